#pragma once

#include <map>
#include <string>

#include "CheckBatch.h"

namespace talu::packcheck {

/// What the scripts of one installation make, to tell what is made a second time.
class MadeOnce {
 public:
  explicit MadeOnce(Findings& findings) : findings_(findings) {}

  /// Takes the databases and logins that a batch or a line makes and drops.
  void TakeNames(const SqlBatch& batch, const SqlFacts& facts);
  /// Takes the files of a database as the build moves them.
  void TakeFiles(const SqlBatch& batch, const SqlFacts& facts);

 private:
  struct File {
    SqlText Named;
    /// As in `names_`.
    std::string Of;
  };

  Findings& findings_;
  // By "database " or "login " and the bare name.
  std::map<std::string, Place> names_;
  // By the upper-cased path without the folder that is replaced.
  std::map<std::string, File> files_;
};

/// The folder in a batch for which the build puts the database folder; empty when there is none.
std::string MovedFolder(const std::string& batch);

}  // namespace talu::packcheck
