// The add-on packs step: one after the other, each waited for. It has no trap of its own.

#include "deploy/MdlShellExec.h"
#include "pages/FrmApplication.h"
#include "runtime/TextFunctions.h"
#include "startup/Wizard.h"

namespace talu {

void FrmApplication::RunAddOns() {
  const Int16 n = wizard_.GetCfgCount("AddOns");
  if (n < 1) return;
  const std::string started = "Execution of AddOn packs started...";
  Lblmsg.Caption = started;
  wizard_.WriteErrLog(started);
  std::int32_t exitCode = 0;
  for (Int16 i = 1; i <= n; ++i) {
    windows_.DoEvents();
    const std::string line = wizard_.GetCfgValue("AddOns", i);
    const std::string path = wizard_.Machine.AppPath + "\\AddOns\\" + line;
    const std::string packStarted = "Execution of " + line + " AddOn pack started";
    if (Contains(line, ".exe")) {
      Lblmsg.Caption = packStarted + ".Please follow instructions...";
      wizard_.WriteErrLog(packStarted);
      exitCode = ExecCmd(wizard_, path);
    }
    if (Contains(line, ".msi")) {
      Lblmsg.Caption = packStarted + ".Please wait...";
      wizard_.WriteErrLog(packStarted);
      // Logged as an administrative installation, run as a plain one.
      wizard_.WriteErrLog("msiexec /a \"" + path + "\" /quiet");
      exitCode = ExecCmd(wizard_, "msiexec /i \"" + path + "\" /quiet");
    }
    wizard_.WriteErrLog("Process Finished, Exit Code " + std::to_string(exitCode));
    wizard_.WriteUninstall("AddOns:" + line);
    windows_.DoEvents();
  }
}

}  // namespace talu
