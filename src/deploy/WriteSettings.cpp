// The settings files step. It has no trap of its own.

#include "deploy/Deployment.h"
#include "runtime/TextFunctions.h"
#include "startup/InstallContext.h"

namespace talu {
namespace {

std::string SettingValue(const InstallState& state, const std::string& key) {
  if (key == "SERVER") return state.ServerName;
  if (key == "USERNAME") return state.SqlUser;
  if (key == "PASSWORD") return state.SqlPassword;
  return "";
}

}  // namespace

void Deployment::WriteSettings() {
  TextFiles& files = install_.TextFiles;
  const Int16 n = install_.GetCfgCount("WriteSettings");
  if (n > 0) {
    const std::string started = "Writing Settings started...";
    view_.Status.Caption = started;
    install_.WriteErrLog(started);
    for (Int16 i = 1; i <= n; ++i) {
      install_.Machine.Windows.DoEvents();
      const std::vector<std::string> fields = Split(install_.GetCfgValue("WriteSettings", i), ',');
      if (!Contains(Element(fields, 0), ".txt")) continue;
      const std::string path = install_.State.AppFolderPath + Element(fields, 0);
      const int file = files.FreeFile();
      if (install_.Machine.Files.FileExists(path)) install_.Machine.Files.DeleteFile(path, false);
      files.Open(path, OpenMode::Output, file);
      files.Close(file);
      if (!install_.Machine.Files.FileExists(path)) continue;
      files.Open(path, OpenMode::Append, file);
      const std::string key = UCase(TrimView(Element(fields, 2)));
      files.Print(file, {Element(fields, 1), SettingValue(install_.State, key)});
      files.Close(file);
    }
  }
  // "not Finished" even after a complete run: readers of the log know it so.
  const std::string closing = "Writing Settings not Finished";
  view_.Status.Caption = closing;
  install_.WriteErrLog(closing);
}

}  // namespace talu
