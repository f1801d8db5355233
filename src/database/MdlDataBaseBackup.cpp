#include "database/MdlDataBaseBackup.h"

#include "database/BatchNames.h"
#include "database/TypeScripts.h"
#include "forms/Controls.h"
#include "runtime/ErrorTrap.h"
#include "runtime/TextFunctions.h"
#include "startup/BackupFolder.h"
#include "startup/InstallContext.h"

namespace talu {

MdlDataBaseBackup::MdlDataBaseBackup(InstallContext& install, Shape& bar)
    // A backup may take hours, and nobody could move the page or close it.
    : AdoObjects(install.Machine.DataAccess.Lively()), install_(install), bar_(bar) {}

void MdlDataBaseBackup::BackupDatabases() {
  const ErrorTrap step(
      [this](const RuntimeError& error) { install_.WriteErrorEntry(error, BackupBatchText); });
  step.Assign(BackupScriptCount, [&] { return install_.GetCfgCount("DBSript"); });
  const TypeScripts& scripts = kTypeScripts.at(ScannedType(install_.State.SetupType));
  BackupScriptFolder = scripts.Folder;
  BackupScriptKey = scripts.Key;
  step.CountTo(BackupScriptCount, [&](Int16 index) {
    BackupScriptIndex = index;
    step.Assign(BackupScriptName,
                [&] { return install_.GetCfgValue(BackupScriptKey, BackupScriptIndex); });
    if (!BackupScriptName.empty()) ScanScript(step);
  });
  InstallState& state = install_.State;
  step.Assign(state.BackupFolderPath,
              [&] { return BackupFolderFor(state.AppFolderPath, state.AppFolderName); });
  step([&] {
    FileSystemObject& files = install_.Machine.Files;
    if (!files.FolderExists(state.BackupFolderPath)) files.CreateFolder(state.BackupFolderPath);
  });
  Connect(step);
  BackupListed(step);
}

// Lines before the first directive are skipped.
void MdlDataBaseBackup::ScanScript(const ErrorTrap& step) {
  WindowSystem& windows = install_.Machine.Windows;
  const auto take = [&](std::string_view BackupCurrentLine, ScriptLine what,
                        std::string_view trimmed) {
    if (what == ScriptLine::Gathered) step([&] { AppendLine(BackupBatchText, trimmed); });
    if (what == ScriptLine::Statement) {
      windows.DoEvents();
      step.Assign(BackupBatchText, [&] { return BackupCurrentLine; });
    }
    if (what == ScriptLine::Batch || (what == ScriptLine::Statement && !BackupBatchText.empty())) {
      step([&] { CollectDatabaseName(); });
      step([&] { AdvanceProgress(); });
      windows.DoEvents();
      BackupBatchText.clear();
    }
    return true;
  };
  script_.Read(step, install_.TextFiles,
               install_.Machine.AppPath + BackupScriptFolder + BackupScriptName, take);
  BackupScriptName.clear();
  // The build that follows does not need the memory of the longest batch.
  BackupBatchText.shrink_to_fit();
}

void MdlDataBaseBackup::AdvanceProgress() {
  bar_.Width = bar_.Width < 1000 ? bar_.Width + 1 : 500;
}

void MdlDataBaseBackup::Connect(const ErrorTrap& step) {
  step([&] { TheConnection().ConnectionString(install_.ServerConnectionString()); });
  step([&] { TheConnection().Open(); });
  step([&] { TheCommand().ActiveConnection(TheConnection()); });
}

void MdlDataBaseBackup::BackupListed(const ErrorTrap& step) {
  step.Assign(DatabaseNames, [&] { return Split(DatabaseList, ','); });
  step.CountTo(DatabaseCount, [&](Int16 index) {
    BackupScriptIndex = index;
    std::string name;
    step.Assign(name, [&] { return Trim(Element(DatabaseNames, index)); });
    if (name.empty()) return;
    name = BackedUpName(name);
    DatabaseNames[static_cast<std::size_t>(int{index})] = name;
    Execute(step, "USE Master");
    Execute(step, BackupStatement(name));
  });
}

std::string MdlDataBaseBackup::BackupStatement(const std::string& name) const {
  return "IF  EXISTS (SELECT name FROM sys.databases WHERE name = N'" + name +
         "') BACKUP DATABASE " + name + " TO  DISK = N'" + install_.State.BackupFolderPath +
         "\\Talu_" + name + "_" + DateStamp(install_.Machine.Clock.Now()) +
         ".bkp ' WITH NOFORMAT, INIT,  NAME = N'" + name +
         "-Full Database Backup', SKIP, NOREWIND, NOUNLOAD,  STATS = 10";
}

void MdlDataBaseBackup::Execute(const ErrorTrap& step, const std::string& statement) {
  step([&] { TheCommand().CommandText(statement); });
  step([&] { TheCommand().Execute(); });
}

void MdlDataBaseBackup::CollectDatabaseName() {
  if (!MayNameDatabase(BackupBatchText)) return;
  for (const std::string_view statement : kNamingStatements) {
    if (const auto name = NamedDatabase(BackupBatchText, statement)) AddCandidate(*name);
  }
}

// A substring test: a name that is part of one in the list counts as listed.
void MdlDataBaseBackup::AddCandidate(const std::string& CandidateName) {
  if (Length(CandidateName) > kLongestName || Contains(DatabaseList, CandidateName)) return;
  DatabaseList += "," + CandidateName;
  ++DatabaseCount;
}

}  // namespace talu
