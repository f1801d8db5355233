// Runs one script: gathers its lines into batches, or takes them one by one, and sends them.

#include "database/BatchNames.h"
#include "database/DatabaseBuild.h"
#include "runtime/ErrorTrap.h"
#include "runtime/TextFunctions.h"
#include "startup/InstallContext.h"

namespace talu {
namespace {

constexpr int kCommandTimeout = 300;  // seconds

}  // namespace

// Returns false for a malformed script, which then stays open.
bool DatabaseBuild::RunScript(const ErrorTrap& step, std::string_view folder) {
  step([&] { TheCommand().ActiveConnection(TheConnection()); });
  step([&] { TheCommand().CommandTimeout(kCommandTimeout); });
  const std::string path = install_.Machine.AppPath + std::string(folder) + ScriptName;
  const auto take = [&](std::string_view CurrentLine, ScriptLine what, std::string_view trimmed) {
    if (what == ScriptLine::Gathered) {
      if (BatchText.empty()) batchOrigin_ = {ScriptName, script_.LineNumber};
      step([&] { AppendLine(BatchText, trimmed); });
    } else if (what == ScriptLine::Batch) {
      FinishBatch(step);
    } else if (what == ScriptLine::Statement) {
      install_.Machine.Windows.DoEvents();
      batchOrigin_ = {ScriptName, script_.LineNumber};
      step.Assign(BatchText, [&] { return CurrentLine; });
      ExecuteBatch(step);
    }
    return what != ScriptLine::Malformed;
  };
  if (!script_.Read(step, install_.TextFiles, path, take)) return false;
  ScriptName.clear();
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
  ExecuteBatch(step);
}

// Replaces the folder of the first data file by the database folder.
void DatabaseBuild::MoveDataFiles(const ErrorTrap& step) {
  const std::string oldFolder = DataFolder(step, BatchText);
  step.Assign(BatchText,
              [&] { return Replace(BatchText, oldFolder, install_.State.DBFolderPath); });
}

void DatabaseBuild::RecordName(const ErrorTrap& step, std::string_view thing, std::string& list) {
  const std::optional<std::string> name = CreatedName(step, BatchText, thing);
  if (name) step([&] { list += "," + *name; });
}

void DatabaseBuild::ExecuteBatch(const ErrorTrap& step) {
  if (BatchText.empty()) return;
  executing_ = batchOrigin_;
  step([&] { TheCommand().CommandText(BatchText); });
  step([&] { TheCommand().Execute(); });
  executing_.reset();
  install_.Machine.Windows.DoEvents();
  view_.Bar.Width = view_.Bar.Width < 6000 ? view_.Bar.Width + 1 : 5000;
  BatchText.clear();
}

}  // namespace talu
