#include "TableDefinition.h"

#include <algorithm>

#include "Messages.h"
#include "Text.h"

namespace talu::standin {

/// Skips what concerns storage: CLUSTERED, WITH (…), ON [PRIMARY].
void TableDefinition::SkipStorage() {
  while (true) {
    if (reader_.TakeIf("WITH")) {
      reader_.TakeGroup();
    } else if (reader_.TakeIf("ON") || reader_.TakeIf("TEXTIMAGE_ON")) {
      reader_.TakeName();
    } else if (!reader_.TakeIf("CLUSTERED") && !reader_.TakeIf("NONCLUSTERED")) {
      return;
    }
  }
}

void TableDefinition::TakeNotForReplication() {
  Reader ahead = reader_;
  if (ahead.TakeIf("NOT") && ahead.TakeIf("FOR") && ahead.TakeIf("REPLICATION")) reader_ = ahead;
}

std::vector<std::string> TableDefinition::Create() {
  reader_.ExpectSymbol("(");
  do {
    if (reader_.Next().IsSymbol(")")) break;  // a comma after the last column is allowed
    if (IsAmong(reader_.Next(), kConstraints)) {
      TakeTableConstraint();
    } else {
      columns_.push_back(TakeColumn());
    }
  } while (reader_.TakeSymbol(","));
  reader_.ExpectSymbol(")");
  SkipStorage();
  reader_.ExpectEnd();

  const auto identity = std::ranges::find_if(columns_, &Column::IsIdentity);
  for (const Key& key : keys_) {
    for (Column& column : columns_) {
      column.IsNotNull |= key.IsPrimary && std::ranges::any_of(key.Columns, [&](const auto& name) {
                            return SameName(column.Name, name);
                          });
    }
  }
  std::string parts;
  const auto add = [&parts](const std::string& part) {
    if (!part.empty()) parts.append(parts.empty() ? kItem : kNextItem).append(part);
  };
  for (const Column& column : columns_) add(Declare(column));
  for (const Key& key : keys_) {
    add(DeclareKey(key, identity == columns_.end() ? nullptr : &*identity));
  }
  for (const std::string& constraint : constraints_) add(constraint);
  std::vector<std::string> statements{"CREATE TABLE " + table_.Quoted() + " (" + parts + ")"};
  if (identity != columns_.end() && identity->Seed != 1) {
    statements.push_back("INSERT INTO " + table_.Prefix + "sqlite_sequence (name, seq) VALUES (" +
                         QuoteText(table_.Table) + ", " + std::to_string(identity->Seed - 1) + ")");
  }
  return statements;
}

TableDefinition::Column TableDefinition::TakeColumn() {
  Column column;
  column.Name = reader_.TakeName();
  if (reader_.TakeIf("AS")) {
    column.Computed = " AS" + rewriter_.RewriteExpression(reader_.TakeGroup());
    reader_.TakeIf("PERSISTED");
  } else {
    std::string name;
    auto type = TakeType(reader_, name);
    if (!type && rewriter_.Environment().HasType(name)) {
      type = ColumnType{ColumnType::Kind::Text, "nvarchar", "TEXT", {}, 0};
    }
    if (!type) throw SqlFailure(message::kUnknownType(columns_.size() + 1, name));
    column.Type = *type;
  }
  while (TakeColumnConstraint(column)) {
  }
  return column;
}

/// CONSTRAINT and its name, for SQLite.
std::string TableDefinition::TakeConstraintName(const std::string& owner) {
  constraint_ = reader_.TakeIf("CONSTRAINT") ? reader_.TakeName() : std::string();
  // Without a name of its own SQLite would call it by the one before, that of the type's check.
  if (constraint_.empty() && reader_.Next().Is("CHECK")) constraint_ = "CK__" + owner;
  return constraint_.empty() ? "" : "CONSTRAINT " + QuoteName(constraint_) + " ";
}

bool TableDefinition::TakeColumnConstraint(Column& column) {
  const std::string named = std::string(kMore) + TakeConstraintName(column.Name);
  const Token next = reader_.Next();
  if (reader_.TakeIf("IDENTITY")) {
    TakeIdentity(column);
  } else if (reader_.TakeIf("NOT")) {
    reader_.Expect("NULL");
    column.IsNotNull = true;
  } else if (IsAmong(next, "PRIMARY UNIQUE")) {
    TakeKey({column.Name});
  } else if (next.Is("DEFAULT")) {
    column.Rest += named + TakeDefault();
  } else if (next.Is("CHECK")) {
    column.Rest += named + TakeCheck();
  } else if (IsAmong(next, "FOREIGN REFERENCES")) {
    if (reader_.TakeIf("FOREIGN")) reader_.Expect("KEY");
    column.Rest += named + TakeReferences();
  } else if (reader_.TakeIf("COLLATE")) {
    const std::string collation = reader_.TakeName();
    column.IsBinary =
        collation.find("_CS") != std::string::npos || collation.find("_BIN") != std::string::npos;
  } else if (IsAmong(next, "NULL ROWGUIDCOL SPARSE")) {
    reader_.Take();
  } else {
    if (!constraint_.empty()) FailNotKnown(next);
    return false;
  }
  return true;
}

void TableDefinition::TakeIdentity(Column& column) {
  column.IsIdentity = true;
  if (reader_.TakeSymbol("(")) {
    const bool isNegative = reader_.TakeSymbol("-");
    column.Seed = (isNegative ? -1 : 1) * static_cast<long long>(ToSize(reader_.Take().Raw));
    reader_.ExpectSymbol(",");
    // SQLite's row numbers increase by one.
    if (reader_.Take().Raw != "1") FailNotKnown(reader_.Last());
    reader_.ExpectSymbol(")");
  }
  TakeNotForReplication();
}

void TableDefinition::TakeTableConstraint() {
  const std::string named = TakeConstraintName(table_.Table);
  condition_.clear();
  if (IsAmong(reader_.Next(), "PRIMARY UNIQUE")) {
    TakeKey({});
  } else if (reader_.TakeIf("FOREIGN")) {
    reader_.Expect("KEY");
    const std::string columns = QuoteNames(reader_.TakeNames());
    constraints_.push_back(named + "FOREIGN KEY (" + columns + ") " + TakeReferences());
  } else {
    constraints_.push_back(named + TakeCheck());
  }
}

void TableDefinition::TakeKey(std::vector<std::string> columns) {
  Key key{constraint_, std::move(columns), reader_.Take().Is("PRIMARY")};
  if (key.IsPrimary) reader_.Expect("KEY");
  while (reader_.TakeIf("CLUSTERED") || reader_.TakeIf("NONCLUSTERED")) {
  }
  if (key.Columns.empty()) key.Columns = reader_.TakeNames();
  SkipStorage();
  keys_.push_back(std::move(key));
}

std::string TableDefinition::TakeCheck() {
  reader_.Expect("CHECK");
  TakeNotForReplication();
  condition_ = rewriter_.RewriteExpression(reader_.TakeGroup());
  return "CHECK" + condition_;
}

std::string TableDefinition::TakeReferences() {
  reader_.Expect("REFERENCES");
  const Rewriter::TableName parent = rewriter_.TakeTableName(reader_);
  parent_ = parent.Table;
  if (!SameName(parent_, table_.Table) &&
      rewriter_.Environment().DefinitionOf(parent.Prefix, parent_).empty()) {
    throw SqlFailure({message::kBadReference(constraint_, parent_), message::kConstraintFailed()},
                     true);
  }
  std::string sql = "REFERENCES " + QuoteName(parent_);
  if (reader_.Next().IsSymbol("(")) sql += rewriter_.RewriteExpression(reader_.TakeGroup());
  // ON DELETE CASCADE, ON UPDATE SET NULL: as SQLite has it.
  while (reader_.TakeIf("ON")) {
    const std::size_t begin = reader_.Last().At;
    if (!reader_.TakeIf("DELETE")) reader_.Expect("UPDATE");
    const bool isOne = reader_.TakeIf("CASCADE");
    if (!isOne && !IsAmong(reader_.Take(), "NO SET")) FailNotKnown(reader_.Last());
    if (!isOne && !IsAmong(reader_.Take(), "ACTION NULL DEFAULT")) FailNotKnown(reader_.Last());
    sql += rewriter_.RewriteExpression({begin, reader_.At()});
  }
  TakeNotForReplication();
  return sql;
}

/// DEFAULT and its value: a literal, a signed number, a function call, or any expression in
/// parentheses.
std::string TableDefinition::TakeDefault() {
  reader_.Take();
  const std::size_t begin = reader_.Next().At;
  if (!reader_.Next().IsSymbol("(")) {
    if (!reader_.TakeSymbol("-")) reader_.TakeSymbol("+");
    if (reader_.Take().Kind == TokenKind::End) FailNotKnown(reader_.Last());
  }
  if (reader_.Next().IsSymbol("(")) reader_.TakeGroup();
  return "DEFAULT (" + rewriter_.RewriteExpression({begin, reader_.At()}) + ")";
}

std::string TableDefinition::Declare(const Column& column) const {
  using Kind = ColumnType::Kind;
  const Kind kind = column.Type.What;
  const std::string name = QuoteName(column.Name);
  if (!column.Computed.empty()) return name + column.Computed;
  if (column.IsIdentity) return name + " INTEGER PRIMARY KEY AUTOINCREMENT" + column.Rest;
  std::string sql = name + " " + column.Type.Declared;
  if (column.IsNotNull) sql += " NOT NULL";
  if (kind == Kind::Text && !column.IsBinary) sql += " COLLATE NOCASE";
  if (column.Type.Length > 0) {
    sql += " CONSTRAINT " + QuoteName(kLengthConstraint) + " CHECK (length(" + name +
           ") <= " + std::to_string(column.Type.Length) + ")";
  }
  if (kind != Kind::Text && kind != Kind::Bytes) {
    sql += " CONSTRAINT " + QuoteName(std::string(kTypeConstraint) + column.Type.Name) +
           " CHECK (typeof(" + name + ") IN (" + (kind == Kind::Integer ? "" : "'real', ") +
           "'integer', 'null')";
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
  const bool isPrimary = key.IsPrimary && identity == nullptr;
  return (key.Constraint.empty() ? "" : "CONSTRAINT " + QuoteName(key.Constraint) + " ") +
         (isPrimary ? "PRIMARY KEY (" : "UNIQUE (") + QuoteNames(key.Columns) + ")";
}

}  // namespace talu::standin
