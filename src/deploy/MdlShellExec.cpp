#include "deploy/MdlShellExec.h"

#include "startup/InstallContext.h"

namespace talu {

std::int32_t ExecCmd(InstallContext& install, const std::string& commandLine) {
  return install.Machine.Programs.RunAndWait(commandLine);
}

}  // namespace talu
