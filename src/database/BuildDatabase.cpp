// The build: runs the scripts of the installation type against the server's master database. Every
// error is remembered and logged, and the next statement runs; a build with any error is rolled
// back.

#include "database/DatabaseBuild.h"
#include "database/MdlDataBaseBackup.h"
#include "database/ScriptReader.h"
#include "database/TypeScripts.h"
#include "runtime/ErrorTrap.h"
#include "startup/InstallContext.h"

namespace talu {

DatabaseBuild::DatabaseBuild(InstallContext& install, const WorkView& view, CommandButton& back)
    : AdoObjects(install.Machine.DataAccess),
      install_(install),
      view_(view),
      back_(back),
      backup_(install, view.Bar) {}

void DatabaseBuild::Trap(const RuntimeError& error) {
  LastError = error.Description;
  install_.WriteErrorEntry(error, BatchText);
}

void DatabaseBuild::BuildDatabase() {
  const ErrorTrap step([this](const RuntimeError& error) { Trap(error); });
  TextFiles& files = install_.TextFiles;
  back_.Enabled = false;
  DBCount = 0;
  LoginCount = 0;
  // From an earlier build. What was gathered, the line mode and the lists stay.
  LastError.clear();
  ScriptName.clear();
  KeyFound = false;
  InBlock = false;
  view_.Status.Caption = "Building Database. Please wait....";
  step([&] { install_.WriteErrLog("Building Database Started...."); });
  step([&] { TheConnection().ConnectionString(install_.ServerConnectionString()); });
  step([&] { backup_.BackupDatabases(); });
  if (install_.State.DBFolderPath.empty()) {
    Trap(RuntimeError(0, ""));
    return;
  }
  OpenForReading(step, files, install_.Machine.AppPath + "\\AppCfg.txt", ConfigFile);
  step([&] { TheConnection().Open(); });
  bool closed = true;  // also when the query itself fails
  step.Assign(closed, [&] { return TheConnection().State() == 0; });
  if (closed) {
    const std::string failed = "Database authentication failed, Can not continue ...";
    view_.Status.Caption = failed;
    step([&] { install_.WriteErrLog(failed); });
    view_.Next.Enabled = false;
    return;
  }
  if (!RunScripts(step, kTypeScripts.at(install_.State.SetupType))) {
    FailForFormat(step);
    return;
  }
  files.Close(ConfigFile);
  if (LastError.empty()) {
    Succeed(step);
  } else {
    Fail(step);
  }
}

// The build's own reader of the configuration. Returns false for a malformed script.
bool DatabaseBuild::RunScripts(const ErrorTrap& step, const TypeScripts& scripts) {
  TextFiles& files = install_.TextFiles;
  while (MoreToRead(step, files, ConfigFile)) {
    std::string_view CurrentLine;
    if (!step.Assign(CurrentLine, [&] { return files.LineInput(ConfigFile); })) continue;
    // A line matches when the key begins with it, so an empty line matches too.
    if (scripts.Key.starts_with(CurrentLine)) KeyFound = true;
    if (!KeyFound) continue;
    if (InBlock) ScriptName = CurrentLine;
    if (CurrentLine == "{") InBlock = true;
    if (CurrentLine == "}") {
      InBlock = false;
      KeyFound = false;
    }
    if (!ScriptName.empty() && InBlock) {
      if (!RunScript(step, scripts.Folder)) return false;
      ScriptName.clear();
    }
  }
  return true;
}

void DatabaseBuild::Succeed(const ErrorTrap& step) {
  const InstallState& state = install_.State;
  step([&] { TheConnection().Close(); });
  const std::string done = "Database creation completed successfully...";
  view_.Status.Caption = done;
  step([&] { install_.WriteErrLog(done); });
  view_.Bar.Width = ProgressShare(80);
  BuildSucceeded = true;
  step([&] { install_.WriteUninstall("UsrName:" + state.SqlUser); });
  step([&] { install_.WriteUninstall("PsWord:" + state.SqlPassword); });
  step([&] {
    install_.WriteUninstall("DBNames:" + std::to_string(DBCount) + state.CreatedDatabaseList);
  });
  step([&] {
    install_.WriteUninstall("DBLogins:" + std::to_string(LoginCount) + state.CreatedLoginList);
  });
}

void DatabaseBuild::Fail(const ErrorTrap& step) {
  step([&] { DropCreatedDatabases(); });
  step([&] { DropCreatedLogins(); });
  step([&] { TheConnection().Close(); });
  view_.Bar.Width = ProgressShare(6);
  BuildSucceeded = false;
  const std::string notFinished = "Database creation not finished...";
  view_.Status.Caption = notFinished;
  step([&] { install_.WriteErrLog(notFinished); });
  install_.Machine.Windows.MessageBox(LastError, "");
}

// Leaves the connection and the two files open.
void DatabaseBuild::FailForFormat(const ErrorTrap& step) {
  step([&] { DropCreatedDatabases(); });
  step([&] { DropCreatedLogins(); });
  view_.Bar.Width = ProgressShare(6);
  BuildSucceeded = false;
  const std::string notCorrect = "Script format is not correct....";
  view_.Status.Caption = notCorrect;
  step([&] { install_.WriteErrLog(notCorrect); });
  if (!LastError.empty()) install_.Machine.Windows.MessageBox(LastError, "");
}

}  // namespace talu
