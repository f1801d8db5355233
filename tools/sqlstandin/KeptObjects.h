#pragma once

#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "SqliteDatabase.h"

namespace talu::standin {

/// What a database has that SQLite has no counterpart for, by kind ("PROCEDURE"), name and text,
/// and the names of what statements that were only taken note of may have made or changed. It is
/// stored in the database itself: backups have it, and a rollback takes it back. Names are as
/// DataName gives them.
class KeptObjects {
 public:
  /// The statement that makes the table for it.
  static const char* const kTable;
  /// The kind of what a noted statement may have made or changed.
  static constexpr std::string_view kNoted = "noted";

  explicit KeptObjects(const SqliteDatabase& database) : database_(database) {}

  /// The first values that a query gives.
  std::vector<std::string> List(const std::string& query) const;
  /// Whether there is an object of the kind.
  bool Has(std::string_view kind, const std::string& name) const;
  /// Whether the name is taken for the kind: what is no schema, type or role shares its names with
  /// tables.
  bool IsTaken(std::string_view kind, const std::string& name) const;
  void Add(std::string_view kind, const std::string& name, std::string_view text) const;
  void Remove(std::string_view kind, const std::string& name) const;
  /// The names of a kind, as FoldName gives them.
  std::set<std::string> Names(std::string_view kind) const;
  /// The text of an object of any kind; empty when there is none.
  std::string TextOf(const std::string& name) const;

  /// What a noted statement does to what it names: it makes or alters it, changes its rows, or
  /// nobody can say.
  enum class Change { Shape, Rows, Any };
  void Note(const std::string& name, Change change) const;
  /// Whether the shape of one of the names is unknown, or (`isWithTexts`) it has a text that is not
  /// run.
  bool IsUncertain(const std::vector<std::string>& names, bool isWithTexts) const;
  bool HasNotes() const { return Exists("kind = 'noted'"); }

  /// How many there are of each kind.
  std::map<std::string, std::int64_t> Counts() const;

 private:
  bool Exists(const std::string& condition) const;

  const SqliteDatabase& database_;
};

/// The names in a text, each once, in order, as DataName gives them; `isChanged`: only those of
/// tables and views that it may change, and all in texts within it.
std::vector<std::string> NamesIn(std::string_view text, bool isChanged);

}  // namespace talu::standin
