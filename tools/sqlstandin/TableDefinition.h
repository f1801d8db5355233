#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "ColumnType.h"
#include "Lexer.h"
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
inline constexpr std::string_view kMore = "/*=*/";

/// Translates CREATE TABLE and ALTER TABLE into SQLite's dialect. An identity column becomes
/// SQLite's automatic row number, so a primary key on other columns becomes a unique constraint.
class TableDefinition {
 public:
  TableDefinition(std::string_view batch, Rewriter& rewriter)
      : batch_(batch), rewriter_(rewriter) {}

  /// Both raise SqlFailure for what has no counterpart in SQLite.
  std::vector<std::string> Create(Range statement, std::string& name);
  /// Columns and constraints, added, altered and dropped.
  std::vector<std::string> Alter(Range statement);

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

  Column TakeColumn(Lexer& lexer);
  bool TakeColumnConstraint(Lexer& lexer, Column& column);
  void TakeIdentity(Lexer& lexer, Column& column);
  void TakeTableConstraint(Lexer& lexer);
  void TakeKey(Lexer& lexer, std::string constraint, std::vector<std::string> columns);
  void Drop(Lexer& lexer);
  void AddConstraint(Lexer& lexer, bool isChecked);
  void FindItem(const std::string& beginning, std::size_t& begin, std::size_t& end) const;
  std::string TakeReferences(Lexer& lexer, const std::string& constraint);
  std::string TakeDefault(Lexer& lexer);
  std::vector<std::string> TakeColumnList(Lexer& lexer);
  std::string Declare(const Column& column, bool isRowNumber) const;
  std::string DeclareKey(const Key& key, const Column* identity) const;

  std::string_view batch_;
  Rewriter& rewriter_;
  Rewriter::TableName table_;
  /// ALTER TABLE: SQLite's text of the table, as it shall be, and what else is to be executed.
  std::string text_;
  std::vector<std::string> statements_;
  /// What the last REFERENCES names.
  std::string parent_;
  std::vector<Column> columns_;
  std::vector<Key> keys_;
  std::vector<std::string> constraints_;
};

/// Whether a constraint of a table begins with the token.
bool IsConstraint(const Token& token);
/// Raises NotKnown.
std::string TakeName(Lexer& lexer);
void TakeNotForReplication(Lexer& lexer);

}  // namespace talu::standin
