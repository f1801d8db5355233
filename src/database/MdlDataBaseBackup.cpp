#include "database/MdlDataBaseBackup.h"

#include "database/BatchNames.h"
#include "database/ScriptReader.h"
#include "database/TypeScripts.h"
#include "forms/Controls.h"
#include "runtime/ErrorTrap.h"
#include "runtime/TextFunctions.h"
#include "startup/BackupFolder.h"
#include "startup/InstallContext.h"

namespace talu {

MdlDataBaseBackup::MdlDataBaseBackup(InstallContext& install, Shape& bar)
    : AdoObjects(install.Machine.DataAccess), install_(install), bar_(bar) {}

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

void MdlDataBaseBackup::ScanScript(const ErrorTrap& step) {
  TextFiles& files = install_.TextFiles;
  OpenForReading(step, files, install_.Machine.AppPath + BackupScriptFolder + BackupScriptName,
                 BackupScriptFile);
  BackupGoMode = false;
  while (MoreToRead(step, files, BackupScriptFile)) {
    std::string_view BackupCurrentLine;  // empty when it cannot be read
    step.Assign(BackupCurrentLine, [&] { return files.LineInput(BackupScriptFile); });
    const std::string_view trimmed = TrimView(BackupCurrentLine);
    if (!trimmed.empty()) TakeLine(step, BackupCurrentLine, trimmed);
  }
  files.Close(BackupScriptFile);
  BackupScriptName.clear();
  // The build that follows must not carry the room of the longest batch along.
  BackupBatchText.shrink_to_fit();
}

void MdlDataBaseBackup::TakeLine(const ErrorTrap& step, std::string_view BackupCurrentLine,
                                 std::string_view trimmed) {
  WindowSystem& windows = install_.Machine.Windows;
  if (ContainsUpper(BackupCurrentLine, kBatchDirective)) {
    BackupGoMode = true;
  } else if (BackupGoMode) {
    if (EqualsUpper(trimmed, "GO")) {
      step([&] { CollectDatabaseName(); });
      step([&] { AdvanceProgress(); });
      windows.DoEvents();
      BackupBatchText.clear();
    } else {
      step([&] { AppendLine(BackupBatchText, trimmed); });
    }
  } else if (ContainsUpper(BackupCurrentLine, kLineDirective)) {
    BackupLineMode = true;
  } else if (BackupLineMode) {
    windows.DoEvents();
    step.Assign(BackupBatchText, [&] { return BackupCurrentLine; });
    if (!BackupBatchText.empty()) {
      step([&] { CollectDatabaseName(); });
      step([&] { AdvanceProgress(); });
      windows.DoEvents();
    }
    BackupBatchText.clear();
  }
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
  if (CandidateName.size() > kLongestName || Contains(DatabaseList, CandidateName)) return;
  DatabaseList += "," + CandidateName;
  ++DatabaseCount;
}

}  // namespace talu
