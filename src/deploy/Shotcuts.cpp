// The shortcuts step.

#include "deploy/Deployment.h"
#include "deploy/MdlCommon.h"
#include "runtime/ErrorTrap.h"
#include "runtime/TextFunctions.h"
#include "startup/InstallContext.h"

namespace talu {

void Deployment::Shotcuts() {
  const ErrorTrap step([this](const RuntimeError& error) { install_.WriteErrorEntry(error); });
  Int16 n;
  step.Assign(n, [&] { return install_.GetCfgCount("Shotcut"); });
  if (n < 1) return;
  const std::string creating = "Creating Shotcuts...";
  view_.Status.Caption = creating;
  step([&] { install_.WriteErrLog(creating); });
  const InstallState& state = install_.State;
  std::vector<std::string> fields;
  step.CountTo(n, [&](Int16 i) {
    step.Assign(fields, [&] { return Split(install_.GetCfgValue("Shotcut", i), ','); });
    step([&] {
      MakeShortcut(install_, state.InstallPath + "\\" + state.AppFolderName + Element(fields, 0),
                   Element(fields, 1), Element(fields, 2), "");
    });
  });
}

}  // namespace talu
