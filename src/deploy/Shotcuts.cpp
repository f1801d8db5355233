// The shortcuts step.

#include "deploy/MdlCommon.h"
#include "pages/FrmApplication.h"
#include "runtime/ErrorTrap.h"
#include "runtime/TextFunctions.h"
#include "startup/Wizard.h"

namespace talu {

void FrmApplication::Shotcuts() {
  const ErrorTrap step([this](const RuntimeError& error) { wizard_.WriteErrorEntry(error); });
  Int16 n;
  step.Assign(n, [&] { return wizard_.GetCfgCount("Shotcut"); });
  if (n < 1) return;
  const std::string creating = "Creating Shotcuts...";
  Lblmsg.Caption = creating;
  step([&] { wizard_.WriteErrLog(creating); });
  const InstallState& state = wizard_.State;
  std::vector<std::string> fields;
  step.CountTo(n, [&](Int16 i) {
    step.Assign(fields, [&] { return Split(wizard_.GetCfgValue("Shotcut", i), ','); });
    step([&] {
      MakeShortcut(wizard_, state.InstallPath + "\\" + state.AppFolderName + Element(fields, 0),
                   Element(fields, 1), Element(fields, 2), "");
    });
  });
}

}  // namespace talu
