// One script: gathers its lines into batches, or takes them one by one, and sends them.

#include "database/BatchNames.h"
#include "database/DatabaseBuild.h"
#include "database/ScriptReader.h"
#include "runtime/ErrorTrap.h"
#include "runtime/TextFunctions.h"
#include "startup/InstallContext.h"

namespace talu {
namespace {

constexpr int kCommandTimeout = 300;  // seconds

}  // namespace

// Returns false when the script is malformed; it then stays open.
bool DatabaseBuild::RunScript(const ErrorTrap& step, std::string_view folder) {
  TextFiles& files = install_.TextFiles;
  step([&] { TheCommand().ActiveConnection(TheConnection()); });
  step([&] { TheCommand().CommandTimeout(kCommandTimeout); });
  OpenForReading(step, files, install_.Machine.AppPath + std::string(folder) + ScriptName,
                 ScriptFile);
  BatchMode = false;
  scriptLine_ = 0;
  while (MoreToRead(step, files, ScriptFile)) {
    ++scriptLine_;
    std::string_view CurrentLine;  // empty when it cannot be read
    step.Assign(CurrentLine, [&] { return files.LineInput(ScriptFile); });
    const std::string_view trimmed = TrimView(CurrentLine);
    if (trimmed.empty()) continue;
    if (!TakeLine(step, CurrentLine, trimmed)) return false;
  }
  files.Close(ScriptFile);
  ScriptName.clear();
  return true;
}

// Returns false for a line that no mode takes.
bool DatabaseBuild::TakeLine(const ErrorTrap& step, std::string_view CurrentLine,
                             std::string_view trimmed) {
  if (ContainsUpper(CurrentLine, kBatchDirective)) {
    BatchMode = true;
  } else if (BatchMode && EqualsUpper(trimmed, "GO")) {
    FinishBatch(step);
  } else if (BatchMode) {
    if (BatchText.empty()) batchOrigin_ = {ScriptName, scriptLine_};
    step([&] { AppendLine(BatchText, trimmed); });
  } else if (ContainsUpper(CurrentLine, kLineDirective)) {
    LineByLineMode = true;
  } else if (LineByLineMode) {
    install_.Machine.Windows.DoEvents();
    batchOrigin_ = {ScriptName, scriptLine_};
    step.Assign(BatchText, [&] { return CurrentLine; });
    if (!BatchText.empty()) ExecuteBatch(step);
    BatchText.clear();
  } else {
    return false;
  }
  return true;
}

void DatabaseBuild::FinishBatch(const ErrorTrap& step) {
  if (CreatesDatabase(BatchText)) {
    MoveDataFiles(step);
    RecordName(step, "DATABASE", install_.State.CreatedDatabaseList);
    step([&] { ++DBCount; });
  }
  if (CreatesLogin(BatchText)) {
    RecordName(step, "LOGIN", install_.State.CreatedLoginList);
    step([&] { ++LoginCount; });
  }
  install_.Machine.Windows.DoEvents();
  if (!BatchText.empty()) ExecuteBatch(step);
  BatchText.clear();
}

// Puts the database folder in the place of the folder that the first data file stands in.
void DatabaseBuild::MoveDataFiles(const ErrorTrap& step) {
  Position drive = 0;
  Position ending = 0;
  Position backslash = 0;
  std::string oldFolder;
  step.Assign(drive, [&] { return InStr(BatchText, ":\\") - 1; });
  step.Assign(ending, [&] { return InStr(drive, BatchText, ".mdf"); });
  step.Assign(backslash, [&] { return InStrRev(BatchText, "\\", ending); });
  step.Assign(oldFolder, [&] { return Mid(BatchText, drive, backslash - drive); });
  step.Assign(BatchText,
              [&] { return Replace(BatchText, oldFolder, install_.State.DBFolderPath); });
}

void DatabaseBuild::RecordName(const ErrorTrap& step, std::string_view thing, std::string& list) {
  const std::optional<std::string> name = CreatedName(step, BatchText, thing);
  if (name) step([&] { list += "," + *name; });
}

void DatabaseBuild::ExecuteBatch(const ErrorTrap& step) {
  executing_ = batchOrigin_;
  step([&] { TheCommand().CommandText(BatchText); });
  step([&] { TheCommand().Execute(); });
  executing_.reset();
  install_.Machine.Windows.DoEvents();
  view_.Bar.Width = view_.Bar.Width < 6000 ? view_.Bar.Width + 1 : 5000;
}

}  // namespace talu
