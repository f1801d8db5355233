#pragma once

#include <string>

namespace talu {

/// The shell's file-operation service.
class ShellOperations {
 public:
  virtual ~ShellOperations() = default;
  /// `SHFileOperationA` with no owner window: `operation` 2 is copy; `flags` are its 16-bit flags.
  /// Each path is a single path; the call adds the list's double termination. Returns the service's
  /// return code, 0 for success. Raises nothing.
  virtual int FileOperation(int operation, const std::string& from, const std::string& to,
                            int flags) = 0;
};

}  // namespace talu
