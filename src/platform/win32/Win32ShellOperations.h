#pragma once

#include "platform/ShellOperations.h"

namespace talu {

/// `SHFileOperationA`, with a shortcut for the most common case: `CopyFileA`, which is several
/// times faster, copies one plain file when no questions are to be asked. If that fails the shell
/// copies it, and overcomes what it can (a read-only target, a missing folder).
class Win32ShellOperations : public ShellOperations {
 public:
  int FileOperation(int operation, const std::string& from, const std::string& to,
                    int flags) override;
};

}  // namespace talu
