// The closing instructions.

#include "deploy/Deployment.h"
#include "runtime/ErrorTrap.h"
#include "runtime/TextFunctions.h"
#include "startup/InstallContext.h"

namespace talu {

void Deployment::ShowFinalMsg() {
  const ErrorTrap step([this](const RuntimeError& error) { install_.WriteErrorEntry(error); });
  step([&] { install_.WriteErrLog("Final Message started..."); });
  Int16 n;
  step.Assign(n, [&] { return install_.GetCfgCount("FinalMsg"); });
  if (n > 0) {
    view_.Status.Caption = "Please read below instructions carefully...";
    std::string line;
    step.CountTo(n, [&](Int16 i) {
      step.Assign(line, [&] { return install_.GetCfgValue("FinalMsg", i); });
      if (!TrimView(line).empty()) closing_.Caption = closing_.Caption.Get() + "\r" + line;
    });
  }
  step([&] { install_.WriteErrLog("Final Message write successfully"); });
}

}  // namespace talu
