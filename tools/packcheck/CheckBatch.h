#pragma once

#include <array>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "CheckSql.h"
#include "Finding.h"

namespace talu::packcheck {

inline constexpr std::array<std::string_view, 4> kSystemDatabases = {"MASTER", "MODEL", "MSDB",
                                                                     "TEMPDB"};

/// What a script sends to the server in one go: a batch, or a line.
struct SqlBatch {
  std::string Text;
  /// Where it begins.
  Place Start;
  /// The numbers of its lines in the script.
  std::vector<int> Lines;

  /// Adds a line of `file`, trimmed as the build does.
  void Add(const std::string& file, int number, std::string_view line);
  void Clear();
  /// The place of the first line that contains `words`, or of a line by its number; the beginning
  /// when there is none.
  Place PlaceOf(std::string_view words) const;
  Place PlaceOf(int number) const;
  /// The place of the line with this byte of `Text`.
  Place PlaceOfByte(std::size_t at) const;
};

/// The name that the build records for a batch that creates a login or a database; nothing when
/// that fails.
std::optional<std::string> RecordedName(const std::string& text, bool login);

/// Checks what a batch creates: whether it is recorded under its name and its files are moved.
void CheckCreated(const SqlBatch& batch, const SqlFacts& facts, Findings& findings);

/// Checks what the order of its statements does to a batch.
void CheckOrder(const SqlBatch& batch, const SqlFacts& facts, const sql::BatchShape& shape,
                Findings& findings);

/// The databases that the backup before a build finds in one set of scripts.
class BackupNames {
 public:
  explicit BackupNames(Findings& findings) : findings_(findings) {}

  /// Extracts the names from a batch as the backup does, and compares them with the actual ones.
  /// A batch that is only a comment may name one for the backup alone.
  void Collect(const SqlBatch& batch, const SqlFacts& facts, bool hasCode);
  /// Whether a database is backed up, or the reason why not has been reported.
  bool Covers(const std::string& bareName) const;

 private:
  /// `place` is where the words before the name stand.
  void Add(const std::string& candidate, const Place& place, const SqlFacts& facts, bool hasCode);

  Findings& findings_;
  std::string list_;
  // The names as they are compared (without brackets, upper-cased), and as written.
  std::map<std::string, std::string> names_;
  std::set<std::string> merged_;
};

}  // namespace talu::packcheck
