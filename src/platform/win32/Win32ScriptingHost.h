#pragma once

#include "platform/ScriptingHost.h"

namespace talu {

/// "WScript.Shell", late bound. Where the host is switched off or incomplete, or a path has letters
/// that the code page lacks, the shell itself is used: it knows the same folders and makes the same
/// shortcuts.
class Win32ScriptingHost : public ScriptingHost {
 public:
  std::unique_ptr<ScriptShell> CreateShell() override;
};

}  // namespace talu
