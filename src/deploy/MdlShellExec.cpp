#include "deploy/MdlShellExec.h"

#include "startup/Wizard.h"

namespace talu {

std::int32_t ExecCmd(Wizard& wizard, const std::string& commandLine) {
  return wizard.Machine.Programs.RunAndWait(commandLine);
}

}  // namespace talu
