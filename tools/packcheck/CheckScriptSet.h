#pragma once

#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "CheckBatch.h"
#include "CheckConfiguration.h"
#include "CheckPack.h"
#include "CheckServer.h"
#include "CheckSql.h"
#include "CheckTwice.h"
#include "database/ScriptReader.h"
#include "database/TypeScripts.h"

namespace talu::packcheck {

/// The scripts of one installation type, read in order as the build reads them.
class ScriptSet {
 public:
  /// `backedUp` is the number of scripts that the backup searches.
  ScriptSet(CheckedPack& pack, const TypeScripts& scripts, std::size_t backedUp);

  /// Reads and checks the scripts that `configuration` lists.
  void Check(const Configuration& configuration);

  const std::string& Key() const { return key_; }
  /// The databases that the scripts use before they create them, as written, each with its first
  /// place.
  const std::vector<SqlText>& Used() const { return used_; }
  const BackupNames& Backup() const { return backup_; }
  ServerCheck& Server() { return server_; }

 private:
  void CheckFile(const CfgLine& listed);
  void TakeText(const std::string& text);
  void TakeLine(std::string_view line, int number);
  /// Tells that the build stops at the line. What follows is read as if the directive were there.
  void TellMalformed(std::string_view line, int number);
  void TakeDirective(std::string_view line, int number, std::string_view directive);
  void TakeBatchLine(std::string_view line, int number);
  void TakeStatementLine(std::string_view line, int number);
  void CheckBatchLine(std::string_view line, int number);
  void CheckToolLine(std::string_view line, int number);
  void CheckTextLine(std::string_view line);
  void CheckGo(int number, std::string_view line);
  void CheckUnlisted(const Configuration& configuration);
  void FinishBatch();
  void TakeOrder(const SqlBatch& batch);
  bool HasUnfinished() const;
  void NoteUses();
  void TellUnfinished(const std::string& what);
  Place At(int number, std::string_view line) const { return {file_, number, std::string(line)}; }

  CheckedPack& pack_;
  Findings& findings_;
  std::string folder_;
  std::string key_;
  std::size_t backedUp_;

  // The build's state: the line mode and the text continue from script to script.
  ScriptReader reader_;
  std::string lineModeFrom_;
  SqlBatch batch_;

  SqlFollower sql_;
  ServerCheck server_;
  MadeOnce made_;
  BackupNames backup_;
  std::vector<SqlText> used_;
  std::set<std::string> known_;  // created or used, bare names
  bool inMaster_ = true;         // as a build begins; false as well when that has been told

  // About the script being read:
  std::string file_;
  std::string_view text_;
  std::size_t index_ = 0;
  bool hasDirective_ = false;
  bool splitTold_ = false;
  int toldRegion_ = 0;
  int toldText_ = 0;
};

}  // namespace talu::packcheck
