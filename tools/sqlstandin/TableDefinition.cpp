#include "TableDefinition.h"

#include <algorithm>
#include <charconv>

#include "Messages.h"
#include "Text.h"
#include "TokenCopier.h"
#include "sql/Names.h"

namespace talu::standin {
namespace {

[[noreturn]] void FailAt(const Token& token) {
  Rewriter::FailAt(token);
}

void SkipGroup(Lexer& lexer) {
  if (!lexer.Peek().IsSymbol("(")) FailAt(lexer.Peek());
  TakeGroup(lexer);
}

/// Skips what concerns storage: CLUSTERED, WITH (…), ON [PRIMARY].
void SkipStorage(Lexer& lexer) {
  while (true) {
    const Token next = lexer.Peek();
    if (next.Is("CLUSTERED") || next.Is("NONCLUSTERED")) {
      lexer.Next();
    } else if (next.Is("WITH")) {
      lexer.Next();
      SkipGroup(lexer);
    } else if (next.Is("ON") || next.Is("TEXTIMAGE_ON")) {
      lexer.Next();
      TakeName(lexer);
    } else {
      return;
    }
  }
}

}  // namespace

bool IsConstraint(const Token& token) {
  return IsAmong(token, "CONSTRAINT PRIMARY UNIQUE FOREIGN CHECK DEFAULT");
}

std::string TakeName(Lexer& lexer) {
  const Token token = lexer.Next();
  if (!token.IsName()) FailAt(token);
  return token.Value();
}

void TakeNotForReplication(Lexer& lexer) {
  Lexer ahead = lexer;
  if (!TakeIf(ahead, "NOT") || !TakeIf(ahead, "FOR") || !TakeIf(ahead, "REPLICATION")) return;
  lexer = ahead;
}

std::vector<std::string> TableDefinition::Create(Range statement, std::string& name) {
  Lexer lexer(batch_, statement.Begin, statement.End);
  lexer.Next();
  lexer.Next();
  table_ = rewriter_.TakeTableName(lexer);
  name = table_.Table;
  if (!TakeSymbol(lexer, "(")) FailAt(lexer.Peek());
  do {
    const Token next = lexer.Peek();
    if (next.IsSymbol(")")) break;  // a comma after the last column is allowed
    if (IsConstraint(next)) {
      TakeTableConstraint(lexer);
    } else {
      columns_.push_back(TakeColumn(lexer));
    }
  } while (TakeSymbol(lexer, ","));
  if (!TakeSymbol(lexer, ")")) FailAt(lexer.Peek());
  SkipStorage(lexer);
  if (lexer.Peek().Kind != TokenKind::End) FailAt(lexer.Peek());

  const auto identity = std::find_if(columns_.begin(), columns_.end(),
                                     [](const Column& column) { return column.IsIdentity; });
  for (const Key& key : keys_) {
    for (const std::string& name : key.Columns) {
      for (Column& column : columns_) {
        if (key.IsPrimary && SameName(column.Name, name)) column.IsNotNull = true;
      }
    }
  }
  std::string parts;
  const auto add = [&parts](const std::string& part) {
    if (!part.empty()) parts.append(parts.empty() ? "" : ", ").append(kItem).append(part);
  };
  for (const Column& column : columns_) add(Declare(column, column.IsIdentity));
  for (const Key& key : keys_)
    add(DeclareKey(key, identity == columns_.end() ? nullptr : &*identity));
  for (const std::string& constraint : constraints_) add(constraint);
  std::vector<std::string> statements{"CREATE TABLE " + table_.Quoted() + " (" + parts + ")"};
  if (identity != columns_.end() && identity->Seed != 1) {
    statements.push_back("INSERT INTO " + table_.Prefix + "sqlite_sequence (name, seq) VALUES (" +
                         QuoteText(table_.Table) + ", " + std::to_string(identity->Seed - 1) + ")");
  }
  return statements;
}

TableDefinition::Column TableDefinition::TakeColumn(Lexer& lexer) {
  Column column;
  column.Name = TakeName(lexer);
  if (TakeIf(lexer, "AS")) {
    if (!lexer.Peek().IsSymbol("(")) FailAt(lexer.Peek());
    column.Computed = " AS " + rewriter_.RewriteExpression(TakeGroup(lexer));
    TakeIf(lexer, "PERSISTED");
  } else {
    const Token name = lexer.Peek();
    if (!name.IsName() || (sql::IsReserved(name.Raw) && !name.Is("DOUBLE"))) FailAt(name);
    auto type = TakeType(lexer);
    if (!type && rewriter_.HasType(lexer, name))
      type = ColumnType{ColumnType::Kind::Text, "nvarchar", "TEXT", {}, 0};
    if (!type) throw SqlFailure(message::kUnknownType(columns_.size() + 1, name.Value()));
    column.Type = *type;
  }
  while (TakeColumnConstraint(lexer, column)) {
  }
  return column;
}

bool TableDefinition::TakeColumnConstraint(Lexer& lexer, Column& column) {
  std::string constraint;
  if (TakeIf(lexer, "CONSTRAINT")) constraint = TakeName(lexer);
  // Without a name of its own SQLite would call it by the one before, that of the type's check.
  if (constraint.empty() && lexer.Peek().Is("CHECK")) constraint = "CK__" + column.Name;
  const std::string named =
      std::string(kMore) + (constraint.empty() ? "" : "CONSTRAINT " + QuoteName(constraint) + " ");
  const Token next = lexer.Peek();
  if (next.Is("IDENTITY")) {
    TakeIdentity(lexer, column);
    TakeNotForReplication(lexer);
  } else if (TakeIf(lexer, "NOT")) {
    if (!TakeIf(lexer, "NULL")) FailAt(lexer.Peek());
    column.IsNotNull = true;
  } else if (next.Is("PRIMARY") || next.Is("UNIQUE")) {
    TakeKey(lexer, constraint, {column.Name});
  } else if (next.Is("DEFAULT")) {
    column.Rest += named + TakeDefault(lexer);
  } else if (TakeIf(lexer, "CHECK")) {
    if (!lexer.Peek().IsSymbol("(")) FailAt(lexer.Peek());
    column.Rest += named + "CHECK " + rewriter_.RewriteExpression(TakeGroup(lexer));
  } else if (next.Is("FOREIGN") || next.Is("REFERENCES")) {
    if (TakeIf(lexer, "FOREIGN") && !TakeIf(lexer, "KEY")) FailAt(lexer.Peek());
    column.Rest += named + TakeReferences(lexer, constraint);
  } else if (TakeIf(lexer, "COLLATE")) {
    const std::string collation = TakeName(lexer);
    column.IsBinary =
        collation.find("_CS") != std::string::npos || collation.find("_BIN") != std::string::npos;
  } else if (!TakeIf(lexer, "NULL") && !TakeIf(lexer, "ROWGUIDCOL") && !TakeIf(lexer, "SPARSE")) {
    if (!constraint.empty()) FailAt(next);
    return false;
  }
  return true;
}

void TableDefinition::TakeIdentity(Lexer& lexer, Column& column) {
  lexer.Next();
  column.IsIdentity = true;
  if (TakeSymbol(lexer, "(")) {
    const bool isNegative = TakeSymbol(lexer, "-");
    const Token seed = lexer.Next();
    std::from_chars(seed.Raw.data(), seed.Raw.data() + seed.Raw.size(), column.Seed);
    if (isNegative) column.Seed = -column.Seed;
    if (!TakeSymbol(lexer, ",")) FailAt(lexer.Peek());
    // SQLite's row numbers increase by one.
    const Token step = lexer.Next();
    if (step.Raw != "1") FailAt(step);
    if (!TakeSymbol(lexer, ")")) FailAt(lexer.Peek());
  }
}

void TableDefinition::TakeTableConstraint(Lexer& lexer) {
  std::string constraint;
  if (TakeIf(lexer, "CONSTRAINT")) constraint = TakeName(lexer);
  if (constraint.empty() && lexer.Peek().Is("CHECK")) constraint = "CK__" + table_.Table;
  const std::string named = constraint.empty() ? "" : "CONSTRAINT " + QuoteName(constraint) + " ";
  if (lexer.Peek().Is("PRIMARY") || lexer.Peek().Is("UNIQUE")) {
    TakeKey(lexer, constraint, {});
  } else if (TakeIf(lexer, "FOREIGN")) {
    if (!TakeIf(lexer, "KEY")) FailAt(lexer.Peek());
    std::string columns;
    for (const std::string& name : TakeColumnList(lexer)) {
      columns += (columns.empty() ? "" : ", ") + QuoteName(name);
    }
    constraints_.push_back(named + "FOREIGN KEY (" + columns + ") " +
                           TakeReferences(lexer, constraint));
  } else if (TakeIf(lexer, "CHECK")) {
    TakeNotForReplication(lexer);
    if (!lexer.Peek().IsSymbol("(")) FailAt(lexer.Peek());
    constraints_.push_back(named + "CHECK " + rewriter_.RewriteExpression(TakeGroup(lexer)));
  } else {
    FailAt(lexer.Peek());
  }
}

void TableDefinition::TakeKey(Lexer& lexer, std::string constraint,
                              std::vector<std::string> columns) {
  Key key{std::move(constraint), std::move(columns), lexer.Next().Is("PRIMARY")};
  if (key.IsPrimary && !TakeIf(lexer, "KEY")) FailAt(lexer.Peek());
  while (TakeIf(lexer, "CLUSTERED") || TakeIf(lexer, "NONCLUSTERED")) {
  }
  if (key.Columns.empty()) key.Columns = TakeColumnList(lexer);
  SkipStorage(lexer);
  keys_.push_back(std::move(key));
}

std::vector<std::string> TableDefinition::TakeColumnList(Lexer& lexer) {
  std::vector<std::string> names;
  if (!TakeSymbol(lexer, "(")) FailAt(lexer.Peek());
  do {
    names.push_back(TakeName(lexer));
    if (!TakeIf(lexer, "ASC")) TakeIf(lexer, "DESC");
  } while (TakeSymbol(lexer, ","));
  if (!TakeSymbol(lexer, ")")) FailAt(lexer.Peek());
  return names;
}

std::string TableDefinition::TakeReferences(Lexer& lexer, const std::string& constraint) {
  if (!TakeIf(lexer, "REFERENCES")) FailAt(lexer.Peek());
  const Rewriter::TableName parent = rewriter_.TakeTableName(lexer);
  parent_ = parent.Table;
  if (!SameName(parent_, table_.Table) && rewriter_.DefinitionOf(parent).empty()) {
    throw SqlFailure({message::kBadReference(constraint, parent_), message::kConstraintFailed()},
                     true);
  }
  std::string sql = "REFERENCES " + QuoteName(parent_);
  if (lexer.Peek().IsSymbol("(")) sql += rewriter_.RewriteExpression(TakeGroup(lexer));
  while (TakeIf(lexer, "ON")) {
    sql += TakeIf(lexer, "DELETE") ? " ON DELETE" : " ON UPDATE";
    if (sql.ends_with("UPDATE") && !TakeIf(lexer, "UPDATE")) FailAt(lexer.Peek());
    if (TakeIf(lexer, "NO")) {
      if (!TakeIf(lexer, "ACTION")) FailAt(lexer.Peek());
      sql += " NO ACTION";
    } else if (TakeIf(lexer, "CASCADE")) {
      sql += " CASCADE";
    } else if (TakeIf(lexer, "SET")) {
      sql += TakeIf(lexer, "NULL") ? " SET NULL" : " SET DEFAULT";
      if (sql.ends_with("DEFAULT") && !TakeIf(lexer, "DEFAULT")) FailAt(lexer.Peek());
    } else if (lexer.Peek().Kind != TokenKind::End) {
      FailAt(lexer.Peek());
    }
  }
  TakeNotForReplication(lexer);
  return sql;
}

/// DEFAULT and its value: a literal, a signed number, a function call, or any expression in
/// parentheses.
std::string TableDefinition::TakeDefault(Lexer& lexer) {
  lexer.Next();
  const std::size_t begin = lexer.Peek().At;
  Token last = lexer.Peek();
  if (!last.IsSymbol("(")) last = lexer.Next();
  if (last.IsSymbol("-") || last.IsSymbol("+")) last = lexer.Next();
  if (last.Kind == TokenKind::End) FailAt(last);
  std::size_t end = last.At + last.Raw.size();
  if (lexer.Peek().IsSymbol("(")) end = TakeGroup(lexer).End;
  return "DEFAULT (" + rewriter_.RewriteExpression({begin, end}) + ")";
}

std::string TableDefinition::Declare(const Column& column, bool isRowNumber) const {
  const std::string name = QuoteName(column.Name);
  if (!column.Computed.empty()) return name + column.Computed;
  if (isRowNumber) return name + " INTEGER PRIMARY KEY AUTOINCREMENT" + column.Rest;
  using Kind = ColumnType::Kind;
  std::string sql = name + " " + column.Type.Declared;
  if (column.IsNotNull) sql += " NOT NULL";
  if (column.Type.What == Kind::Text && !column.IsBinary) sql += " COLLATE NOCASE";
  if (column.Type.Length > 0) {
    sql += " CONSTRAINT " + QuoteName(kLengthConstraint) + " CHECK (length(" + name +
           ") <= " + std::to_string(column.Type.Length) + ")";
  }
  if (column.Type.What == Kind::Integer || column.Type.What == Kind::Real ||
      column.Type.What == Kind::Numeric) {
    const std::string constraint = std::string(kTypeConstraint) + column.Type.Name;
    sql += " CONSTRAINT " + QuoteName(constraint) + " CHECK (typeof(" + name + ") IN (" +
           (column.Type.What == Kind::Integer ? "" : "'real', ") + "'integer', 'null')";
    if (!column.Type.Range.empty()) {
      sql += " AND (" + name + " IS NULL OR " + name + " BETWEEN " + column.Type.Range + ")";
    }
    sql += ")";
  }
  return sql + column.Rest;
}

std::string TableDefinition::DeclareKey(const Key& key, const Column* identity) const {
  if (identity != nullptr && key.Columns.size() == 1 &&
      SameName(key.Columns.front(), identity->Name)) {
    return {};  // the row number is already unique
  }
  std::string columns;
  for (const std::string& name : key.Columns) {
    columns += (columns.empty() ? "" : ", ") + QuoteName(name);
  }
  const bool isPrimary = key.IsPrimary && identity == nullptr;
  return (key.Constraint.empty() ? "" : "CONSTRAINT " + QuoteName(key.Constraint) + " ") +
         (isPrimary ? "PRIMARY KEY (" : "UNIQUE (") + columns + ")";
}

}  // namespace talu::standin
