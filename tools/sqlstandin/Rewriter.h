#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Reader.h"
#include "Statements.h"

namespace talu::standin {

struct TableColumn {
  std::string Name;
  bool IsIdentity = false;
};

/// What the rewriter needs to know about the session whose statement it rewrites.
class RewriteEnvironment {
 public:
  virtual ~RewriteEnvironment() = default;
  /// Makes another database reachable and returns the prefix of its tables ("other."); empty for
  /// the current database. Raises SqlFailure (911, 942) when it cannot be used.
  virtual std::string PrefixOf(const std::string& database) = 0;
  /// A variable's value as SQL; nothing for an unknown one.
  virtual std::optional<std::string> Variable(std::string_view name) = 0;
  /// The columns of a table, in order; empty when there is no such table.
  virtual std::vector<TableColumn> Columns(const std::string& prefix, const std::string& table) = 0;
  /// Whether SET IDENTITY_INSERT is on for the table.
  virtual bool AllowsIdentityInsert(const std::string& table) = 0;
  /// The statement reads a system view, which has fewer columns than on the real server.
  virtual void ReadsSystemView() = 0;
  /// SQLite's text of a table; empty when there is none.
  virtual std::string DefinitionOf(const std::string& prefix, const std::string& table) = 0;
  /// Whether the current database has a schema of the name, other than dbo.
  virtual bool IsSchema(std::string_view name) = 0;
  /// Whether the current database has a type of its own of the name, as DataName gives it.
  virtual bool HasType(const std::string& name) = 0;
};

/// Translates statements into SQLite's dialect, token by token, in one pass. What has no
/// counterpart raises NotKnown, here or by SQLite.
class Rewriter {
 public:
  Rewriter(std::string_view batch, RewriteEnvironment& environment)
      : batch_(batch), environment_(environment) {}

  /// The statements to execute instead of this one, in order.
  std::vector<std::string> Rewrite(DataStatement::Verb verb, Range text);

  /// CREATE or ALTER VIEW: the statement that makes it anew.
  std::string RewriteView(Range text);

  /// The table of the last CREATE TABLE, or the view.
  const std::string& Target() const { return target_; }

  /// Whether the last INSERT had no column list and was given one.
  bool AddedColumns() const { return addedColumns_; }

  /// An expression, a condition, a query.
  std::string RewriteExpression(Range range);

  /// A possibly qualified table name.
  struct TableName {
    std::string Prefix;
    std::string Table;
    std::string Quoted() const;
  };
  TableName TakeTableName(Reader& reader);
  RewriteEnvironment& Environment() { return environment_; }

  /// Rows that would break a constraint: a query for their number, which is to be asked when the
  /// statements are executed.
  struct RowCheck {
    std::string Constraint;
    std::string Count;
  };
  void Check(std::string constraint, std::string count) {
    checks_.push_back({std::move(constraint), std::move(count)});
  }
  const std::vector<RowCheck>& Checks() const { return checks_; }

 private:
  std::string RewriteInsert(Reader& reader, std::size_t end);
  std::vector<std::string> RewriteTruncate(Reader& reader);
  std::string RewriteCreateIndex(Reader& reader, std::size_t end);
  std::string RewriteDropIndex(Reader& reader);

  std::string_view batch_;
  RewriteEnvironment& environment_;
  bool addedColumns_ = false;
  std::string target_;
  std::vector<RowCheck> checks_;
};

/// A name in quotes for SQLite, whatever it contains; names with commas between them.
std::string QuoteName(std::string_view name);
std::string QuoteNames(const std::vector<std::string>& names);
/// A text in quotes for SQLite, whatever it contains, even NULs.
std::string QuoteText(std::string_view text);

}  // namespace talu::standin
