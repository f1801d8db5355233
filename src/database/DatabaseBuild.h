#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "database/MdlDataBaseBackup.h"
#include "database/ScriptReader.h"
#include "runtime/Int16.h"
#include "startup/AdoObjects.h"
#include "startup/WorkView.h"

namespace talu {

class InstallContext;
class RuntimeError;
struct TypeScripts;

/// Builds the databases from the pack's scripts, after a backup of those that exist. A build that
/// fails is rolled back. The state lives as long as the program.
class DatabaseBuild : private AdoObjects {
 public:
  DatabaseBuild(InstallContext& install, const WorkView& view, CommandButton& back);

  /// Runs one build. Logs and shows errors; raises only what a message box raises.
  void BuildDatabase();

  /// Whether the last build ended without an error.
  bool BuildSucceeded = false;

  /// Where a batch begins: script file name, and line from 1.
  struct BatchOrigin {
    std::string Script;
    int Line = 0;
  };
  /// The batch that is being executed, for observers of a build; nothing between batches.
  const std::optional<BatchOrigin>& Executing() const { return executing_; }

 private:
  void Trap(const RuntimeError& error);
  bool RunScripts(const ErrorTrap& step, const TypeScripts& scripts);
  bool RunScript(const ErrorTrap& step, std::string_view folder);
  void FinishBatch(const ErrorTrap& step);
  void MoveDataFiles(const ErrorTrap& step);
  void RecordName(const ErrorTrap& step, std::string_view thing, std::string& list);
  void ExecuteBatch(const ErrorTrap& step);
  void Succeed(const ErrorTrap& step);
  void Fail(const ErrorTrap& step);
  void FailForFormat(const ErrorTrap& step);

  void DropCreatedDatabases();
  void DropCreatedLogins();
  void Send(const std::string& statement);

  InstallContext& install_;
  WorkView view_;
  CommandButton& back_;
  MdlDataBaseBackup backup_;

  Int16 DBCount;
  Int16 LoginCount;
  ScriptReader script_;
  std::string BatchText;
  std::string ScriptName;
  bool KeyFound = false;
  bool InBlock = false;
  std::string LastError;
  int ConfigFile = 0;
  BatchOrigin batchOrigin_;
  std::optional<BatchOrigin> executing_;
};

}  // namespace talu
