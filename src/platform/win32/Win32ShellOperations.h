#pragma once

#include "platform/ShellOperations.h"

namespace talu {

/// `SHFileOperationA`, with a short way for the commonest case: the copy of one plain file without
/// questions is done by `CopyFileA`, several times faster, and goes to the shell only if that
/// fails, so that what the shell would overcome (a read-only target, a missing folder) it still
/// does. A file that is locked is tried again for half a second before.
class Win32ShellOperations : public ShellOperations {
 public:
  int FileOperation(int operation, const std::string& from, const std::string& to,
                    int flags) override;
};

}  // namespace talu
