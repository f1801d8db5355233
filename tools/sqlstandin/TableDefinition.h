#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "ColumnType.h"
#include "Rewriter.h"

namespace talu::standin {

/// The names of the constraints that enforce a column's type and length; the real server has no
/// constraints for that, but errors of its own, which these represent.
inline constexpr std::string_view kLengthConstraint = "sqlstandin:length";
inline constexpr std::string_view kTypeConstraint = "sqlstandin:type:";

/// Comments in the text that SQLite keeps of a table, by which it can be changed: each column and
/// each constraint of the table stands behind the first, what a column has beside its type behind
/// the second.
inline constexpr std::string_view kItem = "/*;*/";
inline constexpr std::string_view kNextItem = ", /*;*/";
inline constexpr std::string_view kMore = "/*=*/";

/// What a constraint of a table can begin with.
inline constexpr std::string_view kConstraints = "CONSTRAINT PRIMARY UNIQUE FOREIGN CHECK DEFAULT";

/// Translates CREATE TABLE and ALTER TABLE into SQLite's dialect. An identity column becomes
/// SQLite's automatic row number, so a primary key on other columns becomes a unique constraint.
class TableDefinition {
 public:
  /// `reader` is behind the table's name.
  TableDefinition(Reader& reader, Rewriter& rewriter, Rewriter::TableName table)
      : reader_(reader), rewriter_(rewriter), table_(std::move(table)) {}

  /// Both raise SqlFailure for what has no counterpart in SQLite.
  std::vector<std::string> Create();
  /// Columns and constraints, added, altered and dropped.
  std::vector<std::string> Alter();

 private:
  struct Column {
    std::string Name;
    ColumnType Type;
    bool IsIdentity = false;
    long long Seed = 1;
    bool IsNotNull = false;
    bool IsBinary = false;
    /// The expression of a computed column, which has no type.
    std::string Computed;
    /// Defaults, checks, references, in SQLite's syntax.
    std::string Rest;
  };
  struct Key {
    std::string Constraint;
    std::vector<std::string> Columns;
    bool IsPrimary = false;
  };

  Column TakeColumn();
  bool TakeColumnConstraint(Column& column);
  void TakeIdentity(Column& column);
  std::string TakeConstraintName(const std::string& owner);
  void TakeTableConstraint();
  void TakeKey(std::vector<std::string> columns);
  std::string TakeCheck();
  std::string TakeReferences();
  std::string TakeDefault();
  void TakeNotForReplication();
  void SkipStorage();
  std::string Declare(const Column& column) const;
  std::string DeclareKey(const Key& key, const Column* identity) const;

  void DropParts();
  void DropConstraint(const std::string& name);
  void AddConstraint(bool isChecked);
  void AlterColumn();
  Range FindColumn(const std::string& name) const;
  std::size_t EndOfItem(std::size_t begin) const;
  void SetText(const std::string& sql);

  Reader& reader_;
  Rewriter& rewriter_;
  Rewriter::TableName table_;
  /// ALTER TABLE: SQLite's text of the table, as it shall be, and what else is to be executed.
  std::string text_;
  std::vector<std::string> statements_;
  /// Of the last constraint: its name, the condition of a CHECK, the table that it refers to.
  std::string constraint_, condition_, parent_;
  std::vector<Column> columns_;
  std::vector<Key> keys_;
  std::vector<std::string> constraints_;
};

}  // namespace talu::standin
