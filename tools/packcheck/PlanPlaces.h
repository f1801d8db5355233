#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "database/DatabaseBuild.h"
#include "database/ScriptReader.h"
#include "runtime/TextFiles.h"

namespace talu::packcheck {

/// Finds in a script the batches that the log tells of. They are told in the order of the script,
/// so it is gone through once, however many they are.
class ScriptPlaces {
 public:
  /// From here on the batches are those of this script.
  ScriptPlaces(std::string name, std::string text);
  ScriptPlaces(const ScriptPlaces&) = delete;
  ScriptPlaces& operator=(const ScriptPlaces&) = delete;

  /// Where the batch begins, or the line that is a statement; nothing when there is none behind the
  /// one found before. `again`: it may also be that one. The build moves a database's files to
  /// `databaseFolder`.
  std::optional<DatabaseBuild::BatchOrigin> Find(std::string_view batch,
                                                 const std::string& databaseFolder, bool again);

 private:
  std::string name_;
  std::string text_;
  LineScanner lines_;
  ScriptReader reader_;
  int line_ = 0;
  // The one found before, as it stands in the script.
  std::string found_;
  int foundLine_ = 0;
};

}  // namespace talu::packcheck
