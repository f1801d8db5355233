// The add-on packs step: runs them one by one and waits for each. It has no trap of its own.

#include "deploy/Deployment.h"
#include "deploy/MdlShellExec.h"
#include "runtime/TextFunctions.h"
#include "startup/InstallContext.h"

namespace talu {

void Deployment::RunAddOns() {
  const Int16 n = install_.GetCfgCount("AddOns");
  if (n < 1) return;
  const std::string started = "Execution of AddOn packs started...";
  view_.Status.Caption = started;
  install_.WriteErrLog(started);
  std::int32_t exitCode = 0;
  for (Int16 i = 1; i <= n; ++i) {
    install_.Machine.Windows.DoEvents();
    const std::string line = install_.GetCfgValue("AddOns", i);
    const std::string path = install_.Machine.AppPath + "\\AddOns\\" + line;
    const std::string packStarted = "Execution of " + line + " AddOn pack started";
    if (Contains(line, ".exe")) {
      view_.Status.Caption = packStarted + ".Please follow instructions...";
      install_.WriteErrLog(packStarted);
      exitCode = ExecCmd(install_, path);
    }
    if (Contains(line, ".msi")) {
      view_.Status.Caption = packStarted + ".Please wait...";
      install_.WriteErrLog(packStarted);
      // Logged as an administrative installation, run as an ordinary one.
      install_.WriteErrLog("msiexec /a \"" + path + "\" /quiet");
      exitCode = ExecCmd(install_, "msiexec /i \"" + path + "\" /quiet");
    }
    install_.WriteErrLog("Process Finished, Exit Code " + std::to_string(exitCode));
    install_.WriteUninstall("AddOns:" + line);
    install_.Machine.Windows.DoEvents();
  }
}

}  // namespace talu
