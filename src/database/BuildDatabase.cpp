// The build: runs the scripts of the installation type against the server's master database. Every
// error is remembered and logged, and the next statement runs; a build with any error is rolled
// back.

#include "database/MdlDataBaseBackup.h"
#include "database/ScriptReader.h"
#include "pages/FrmSQLNonQuery.h"
#include "runtime/ErrorTrap.h"
#include "startup/Wizard.h"

namespace talu {

void FrmSQLNonQuery::Trap(const RuntimeError& error) {
  LastError = error.Description;
  wizard_.WriteErrorEntry(error, BatchText);
}

void FrmSQLNonQuery::BuildDatabase() {
  const ErrorTrap step([this](const RuntimeError& error) { Trap(error); });
  TextFiles& files = wizard_.TextFiles;
  CmdPrev.Enabled = false;
  DBCount = 0;
  LoginCount = 0;
  // Of an earlier build; what was gathered, the line mode and the lists stay.
  LastError.clear();
  ScriptName.clear();
  KeyFound = false;
  InBlock = false;
  LblMsg.Caption = "Building Database. Please wait....";
  step([&] { wizard_.WriteErrLog("Building Database Started...."); });
  step([&] { TheConnection().ConnectionString(wizard_.ServerConnectionString()); });
  step([&] { wizard_.DataBaseBackup().BackupDatabases(); });
  if (wizard_.State.DBFolderPath.empty()) {
    Trap(RuntimeError(0, ""));
    return;
  }
  OpenForReading(step, files, wizard_.Machine.AppPath + "\\AppCfg.txt", ConfigFile);
  step([&] { TheConnection().Open(); });
  bool closed = true;  // also when the question itself fails
  step.Assign(closed, [&] { return TheConnection().State() == 0; });
  if (closed) {
    const std::string failed = "Database authentication failed, Can not continue ...";
    LblMsg.Caption = failed;
    step([&] { wizard_.WriteErrLog(failed); });
    CmdNext.Enabled = false;
    return;
  }
  if (!RunScripts(step, ChosenScripts())) {
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

FrmSQLNonQuery::ScriptSet FrmSQLNonQuery::ChosenScripts() const {
  switch (wizard_.State.SetupType) {
    case 0:
      return {"\\SQLScript\\Fresh\\", "FreshDBSript"};
    case 1:
      return {"\\SQLScript\\Demo\\", "DemoDBSript"};
    case 2:
      return {"\\SQLScript\\Upgrade\\", "UpgradeDBSript"};
    default:
      return {};
  }
}

// The build's own reader of the configuration. Returns false when a script is malformed.
bool FrmSQLNonQuery::RunScripts(const ErrorTrap& step, const ScriptSet& scripts) {
  TextFiles& files = wizard_.TextFiles;
  while (MoreToRead(step, files, ConfigFile)) {
    std::string_view CurrentLine;
    if (!step.Assign(CurrentLine, [&] { return files.LineInput(ConfigFile); })) continue;
    // The key begins with the whole line: an empty line stands for the key too.
    if (!scripts.Key.empty() && scripts.Key.starts_with(CurrentLine)) KeyFound = true;
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

void FrmSQLNonQuery::Succeed(const ErrorTrap& step) {
  const InstallState& state = wizard_.State;
  step([&] { TheConnection().Close(); });
  const std::string done = "Database creation completed successfully...";
  LblMsg.Caption = done;
  step([&] { wizard_.WriteErrLog(done); });
  ShpProgBar.Width = ProgressShare(80);
  BuildSucceeded = true;
  step([&] { wizard_.WriteUninstall("UsrName:" + state.SqlUser); });
  step([&] { wizard_.WriteUninstall("PsWord:" + state.SqlPassword); });
  step([&] {
    wizard_.WriteUninstall("DBNames:" + std::to_string(DBCount) + state.CreatedDatabaseList);
  });
  step([&] {
    wizard_.WriteUninstall("DBLogins:" + std::to_string(LoginCount) + state.CreatedLoginList);
  });
}

void FrmSQLNonQuery::Fail(const ErrorTrap& step) {
  step([&] { DropCreatedDatabases(); });
  step([&] { DropCreatedLogins(); });
  step([&] { TheConnection().Close(); });
  ShpProgBar.Width = ProgressShare(6);
  BuildSucceeded = false;
  const std::string notFinished = "Database creation not finished...";
  LblMsg.Caption = notFinished;
  step([&] { wizard_.WriteErrLog(notFinished); });
  windows_.MessageBox(LastError, "");
}

// The connection and the two files are left open.
void FrmSQLNonQuery::FailForFormat(const ErrorTrap& step) {
  step([&] { DropCreatedDatabases(); });
  step([&] { DropCreatedLogins(); });
  ShpProgBar.Width = ProgressShare(6);
  BuildSucceeded = false;
  const std::string notCorrect = "Script format is not correct....";
  LblMsg.Caption = notCorrect;
  step([&] { wizard_.WriteErrLog(notCorrect); });
  if (!LastError.empty()) windows_.MessageBox(LastError, "");
}

}  // namespace talu
