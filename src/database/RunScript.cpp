// One script: gathers its lines into batches, or takes them one by one, and sends them.

#include "database/ScriptReader.h"
#include "pages/FrmSQLNonQuery.h"
#include "runtime/ErrorTrap.h"
#include "runtime/TextFunctions.h"
#include "startup/Wizard.h"

namespace talu {
namespace {

constexpr int kCommandTimeout = 300;  // seconds

}  // namespace

// Returns false when the script is malformed; it then stays open.
bool FrmSQLNonQuery::RunScript(const ErrorTrap& step, const std::string& folder) {
  TextFiles& files = wizard_.TextFiles;
  step([&] { TheCommand().ActiveConnection(TheConnection()); });
  step([&] { TheCommand().CommandTimeout(kCommandTimeout); });
  OpenForReading(step, files, wizard_.Machine.AppPath + folder + ScriptName, ScriptFile);
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
bool FrmSQLNonQuery::TakeLine(const ErrorTrap& step, std::string_view CurrentLine,
                              std::string_view trimmed) {
  if (ContainsUpper(CurrentLine, kBatchDirective)) {
    BatchMode = true;
  } else if (BatchMode && EqualsUpper(trimmed, "GO")) {
    FinishBatch(step);
  } else if (BatchMode) {
    if (BatchText.empty()) batchOrigin_ = {ScriptName, scriptLine_};
    step([&] { AppendWhole(BatchText, {kCrLf, trimmed}); });
  } else if (ContainsUpper(CurrentLine, kLineDirective)) {
    LineByLineMode = true;
  } else if (LineByLineMode) {
    windows_.DoEvents();
    batchOrigin_ = {ScriptName, scriptLine_};
    step.Assign(BatchText, [&] { return CurrentLine; });
    if (!BatchText.empty()) ExecuteBatch(step);
    BatchText.clear();
  } else {
    return false;
  }
  return true;
}

void FrmSQLNonQuery::FinishBatch(const ErrorTrap& step) {
  if (Contains(BatchText, "FILENAME") && Contains(BatchText, "CREATE DATABASE")) {
    MoveDataFiles(step);
    RecordName(step, "CREATE DATABASE", "DATABASE", wizard_.State.CreatedDatabaseList);
    step([&] { ++DBCount; });
  }
  if (Contains(BatchText, "CREATE LOGIN")) {
    RecordName(step, "CREATE LOGIN", "LOGIN", wizard_.State.CreatedLoginList);
    step([&] { ++LoginCount; });
  }
  windows_.DoEvents();
  if (!BatchText.empty()) ExecuteBatch(step);
  BatchText.clear();
}

// Puts the database folder in the place of the folder that the first data file stands in.
void FrmSQLNonQuery::MoveDataFiles(const ErrorTrap& step) {
  Position drive = 0;
  Position ending = 0;
  Position backslash = 0;
  std::string oldFolder;
  step.Assign(drive, [&] { return InStr(BatchText, ":\\") - 1; });
  step.Assign(ending, [&] { return InStr(drive, BatchText, ".mdf"); });
  step.Assign(backslash, [&] { return InStrRev(BatchText, "\\", ending); });
  step.Assign(oldFolder, [&] { return Mid(BatchText, drive, backslash - drive); });
  step.Assign(BatchText, [&] { return Replace(BatchText, oldFolder, wizard_.State.DBFolderPath); });
}

// Cuts the name behind `keyword`: from the blank before it to the next blank.
void FrmSQLNonQuery::RecordName(const ErrorTrap& step, const char* statement, const char* keyword,
                                std::string& list) {
  Position start = 0;
  Position end = 0;
  Position at = 0;
  step.Assign(at, [&] { return InStr(BatchText, statement); });
  step.Assign(at, [&] { return InStr(at, BatchText, keyword); });
  step.Assign(start, [&] { return InStr(at, BatchText, " "); });
  step.Assign(end, [&] { return InStr(start + 1, BatchText, " "); });
  step([&] { list += "," + Mid(BatchText, start, end - start); });
}

void FrmSQLNonQuery::ExecuteBatch(const ErrorTrap& step) {
  executing_ = batchOrigin_;
  step([&] { TheCommand().CommandText(BatchText); });
  step([&] { TheCommand().Execute(); });
  executing_.reset();
  windows_.DoEvents();
  ShpProgBar.Width = ShpProgBar.Width < 6000 ? ShpProgBar.Width + 1 : 5000;
}

}  // namespace talu
