// The closing instructions.

#include "pages/FrmApplication.h"
#include "runtime/ErrorTrap.h"
#include "runtime/TextFunctions.h"
#include "startup/Wizard.h"

namespace talu {

void FrmApplication::ShowFinalMsg() {
  const ErrorTrap step([this](const RuntimeError& error) { wizard_.WriteErrorEntry(error); });
  step([&] { wizard_.WriteErrLog("Final Message started..."); });
  Int16 n;
  step.Assign(n, [&] { return wizard_.GetCfgCount("FinalMsg"); });
  if (n > 0) {
    Lblmsg.Caption = "Please read below instructions carefully...";
    std::string line;
    step.CountTo(n, [&](Int16 i) {
      line.clear();  // a line that cannot be read must not show the one before again
      step.Assign(line, [&] { return wizard_.GetCfgValue("FinalMsg", i); });
      if (!TrimView(line).empty()) LblFinalMsg.Caption = LblFinalMsg.Caption.Get() + "\r" + line;
    });
  }
  step([&] { wizard_.WriteErrLog("Final Message write successfully"); });
}

}  // namespace talu
