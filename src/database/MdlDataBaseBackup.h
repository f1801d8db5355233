#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "database/ScriptReader.h"
#include "runtime/Int16.h"
#include "startup/AdoObjects.h"

namespace talu {

class InstallContext;
class Shape;

/// The backup before a build: collects the databases that the scripts name and backs up those that
/// exist on the server. The state lives as long as the program, so names found by an earlier build
/// stay.
class MdlDataBaseBackup : private AdoObjects {
 public:
  /// `bar` advances while the scripts are scanned.
  MdlDataBaseBackup(InstallContext& install, Shape& bar);

  /// Scans the scripts of the installation type, then backs up every database found. Logs each
  /// error and continues with the next statement.
  void BackupDatabases();

 private:
  void ScanScript(const ErrorTrap& step);
  void Connect(const ErrorTrap& step);
  void BackupListed(const ErrorTrap& step);
  void Execute(const ErrorTrap& step, const std::string& statement);
  std::string BackupStatement(const std::string& name) const;

  /// Adds the names in the batch text to the list. Raises 5 when a name has no end, 6 when a
  /// position exceeds 32767.
  void CollectDatabaseName();
  void AddCandidate(const std::string& CandidateName);
  void AdvanceProgress();

  InstallContext& install_;
  Shape& bar_;

  Int16 BackupScriptCount;
  Int16 BackupScriptIndex;
  std::string BackupScriptFolder;
  std::string BackupScriptKey;
  std::string BackupScriptName;
  ScriptReader script_;
  std::string BackupBatchText;
  std::string DatabaseList;
  Int16 DatabaseCount;
  std::vector<std::string> DatabaseNames;
};

}  // namespace talu
