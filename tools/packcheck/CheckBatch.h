#pragma once

#include <map>
#include <set>
#include <string>

#include "CheckSql.h"
#include "Finding.h"

namespace talu::packcheck {

/// What a script sends to the server at once: a batch, or a line.
struct SqlBatch {
  std::string Text;
  /// Where it begins.
  Place Start;
};

/// Checks what a batch creates: whether it is recorded under its name and its files are moved.
void CheckCreated(const SqlBatch& batch, const SqlFacts& facts, Findings& findings);

/// The databases that the backup before a build finds in one set of scripts.
class BackupNames {
 public:
  explicit BackupNames(Findings& findings) : findings_(findings) {}

  /// Takes the names out of a batch as the backup does, and checks them against those that are
  /// really there.
  void Collect(const SqlBatch& batch, const SqlFacts& facts);
  /// Whether a database is backed up, or why it is not was told already.
  bool Covers(const std::string& bareName) const;

 private:
  void Add(const std::string& candidate, const SqlBatch& batch, const SqlFacts& facts);

  Findings& findings_;
  std::string list_;
  // As they are compared (without brackets, upper-cased), and as they are written.
  std::map<std::string, std::string> names_;
  std::set<std::string> merged_;
};

}  // namespace talu::packcheck
