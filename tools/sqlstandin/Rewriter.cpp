#include "Rewriter.h"

#include <algorithm>

#include "Messages.h"
#include "TableDefinition.h"
#include "TokenCopier.h"

namespace talu::standin {
namespace {

std::string Quoted(std::string_view text, char quote) {
  std::string quoted(1, quote);
  quoted.reserve(text.size() + 2);
  for (const char c : text) quoted.append(c == quote ? 2 : 1, c);
  return quoted += quote;
}

/// An index name belongs to its table in T-SQL and to the whole database in SQLite.
std::string IndexName(const Rewriter::TableName& table, const std::string& index) {
  return table.Prefix + QuoteName(table.Table + "." + index);
}

}  // namespace

std::string QuoteName(std::string_view name) {
  return Quoted(name, '"');
}

std::string QuoteNames(const std::vector<std::string>& names) {
  std::string quoted;
  for (const std::string& name : names) quoted += (quoted.empty() ? "" : ", ") + QuoteName(name);
  return quoted;
}

std::string QuoteText(std::string_view text) {
  if (text.find('\0') == std::string_view::npos) return Quoted(text, '\'');
  // SQLite's parser stops at a NUL, so a text with one is written as bytes.
  static constexpr std::string_view kDigits = "0123456789ABCDEF";
  std::string quoted = "CAST(X'";
  for (const char c : text) {
    quoted += kDigits[static_cast<unsigned char>(c) >> 4];
    quoted += kDigits[static_cast<unsigned char>(c) & 0xF];
  }
  return quoted += "' AS TEXT)";
}

std::string Rewriter::TableName::Quoted() const {
  return Prefix + QuoteName(Table);
}

std::vector<std::string> Rewriter::Rewrite(DataStatement::Verb verb, Range text) {
  using Verb = DataStatement::Verb;
  Reader reader(batch_, text);
  switch (verb) {
    case Verb::Insert:
      if (!reader.TakeIf("INSERT")) break;  // after common table expressions
      return {RewriteInsert(reader, text.End)};
    case Verb::CreateTable:
    case Verb::AlterTable: {
      reader.Take();
      reader.Take();
      const TableName table = TakeTableName(reader);
      target_ = table.Table;
      TableDefinition definition(reader, *this, table);
      return verb == Verb::CreateTable ? definition.Create() : definition.Alter();
    }
    case Verb::Truncate:
      return RewriteTruncate(reader);
    case Verb::CreateIndex:
      return {RewriteCreateIndex(reader, text.End)};
    case Verb::DropIndex:
      return {RewriteDropIndex(reader)};
    case Verb::DropTable: {
      reader.Take();
      reader.Take();
      const std::string head = reader.TakeIfExists() ? "DROP TABLE IF EXISTS " : "DROP TABLE ";
      std::vector<std::string> statements;
      do {
        statements.push_back(head + TakeTableName(reader).Quoted());
      } while (reader.TakeSymbol(","));
      reader.ExpectEnd();
      return statements;
    }
    case Verb::Delete:  // FROM may be omitted
      if (!reader.TakeIf("DELETE") || reader.Next().Is("FROM")) break;
      return {"DELETE FROM" + RewriteExpression({reader.At(), text.End})};
    case Verb::Select:
    case Verb::Update:
      break;
  }
  return {RewriteExpression(text)};
}

std::string Rewriter::RewriteExpression(Range range) {
  return TokenCopier(Reader(batch_, range), environment_).CopyAll();
}

Rewriter::TableName Rewriter::TakeTableName(Reader& reader) {
  const Token first = reader.Next();
  const std::vector<std::string> parts = reader.TakeParts();
  if (first.Raw.front() == '#') FailNotKnown(first);
  if (parts.size() > 3) throw NotKnown("a linked server");
  TableName name;
  if (parts.size() == 3) name.Prefix = environment_.PrefixOf(parts.front());
  name.Table = DataName(parts.size() < 2 ? "" : parts[parts.size() - 2], parts.back());
  return name;
}

std::string Rewriter::RewriteView(Range text) {
  while (batch_[text.End - 1] == ';' || batch_[text.End - 1] <= ' ') --text.End;
  Reader reader(batch_, text);
  while (!reader.Take().Is("VIEW")) {
  }
  target_ = TakeTableName(reader).Table;
  std::string columns;
  if (reader.Next().IsSymbol("(")) columns = RewriteExpression(reader.TakeGroup());
  while (!reader.Next().Is("AS")) {  // WITH SCHEMABINDING
    if (reader.Take().Kind == TokenKind::End) FailNotKnown(reader.Next());
  }
  return "CREATE VIEW " + QuoteName(target_) + columns +
         RewriteExpression({reader.Next().At, text.End});
}

std::string Rewriter::RewriteInsert(Reader& reader, std::size_t end) {
  reader.TakeIf("INTO");
  const TableName table = TakeTableName(reader);
  const std::vector<TableColumn> columns = environment_.Columns(table.Prefix, table.Table);
  const bool hasIdentity = std::ranges::any_of(columns, &TableColumn::IsIdentity);
  std::vector<std::string> names;
  if (reader.Next().IsSymbol("(")) {
    names = reader.TakeNames();
    const auto isIdentity = [&](const std::string& name) {
      return std::ranges::any_of(columns, [&](const TableColumn& column) {
        return column.IsIdentity && SameName(column.Name, name);
      });
    };
    if (hasIdentity && std::ranges::any_of(names, isIdentity) &&
        !environment_.AllowsIdentityInsert(table.Table)) {
      throw SqlFailure(message::kExplicitIdentity(table.Table));
    }
  } else if (hasIdentity && !reader.Next().Is("DEFAULT")) {
    // Without a list the values are for all columns except the identity.
    addedColumns_ = true;
    for (const TableColumn& column : columns) {
      if (!column.IsIdentity) names.push_back(column.Name);
    }
  }
  if (reader.IsAtEnd()) FailNotKnown(reader.Next());
  return "INSERT INTO " + table.Quoted() + (names.empty() ? "" : " (" + QuoteNames(names) + ")") +
         RewriteExpression({reader.Next().At, end});
}

std::vector<std::string> Rewriter::RewriteTruncate(Reader& reader) {
  reader.Take();
  reader.Take();
  const TableName table = TakeTableName(reader);
  reader.ExpectEnd();
  std::vector<std::string> statements{"DELETE FROM " + table.Quoted()};
  if (std::ranges::any_of(environment_.Columns(table.Prefix, table.Table),
                          &TableColumn::IsIdentity)) {
    statements.push_back("DELETE FROM " + table.Prefix + "sqlite_sequence WHERE name = " +
                         QuoteText(table.Table) + " COLLATE NOCASE");
  }
  return statements;
}

std::string Rewriter::RewriteCreateIndex(Reader& reader, std::size_t end) {
  std::string sql = "CREATE ";
  while (!reader.TakeIf("INDEX")) {
    if (reader.Take().Is("UNIQUE")) sql += "UNIQUE ";
    if (reader.IsAtEnd()) FailNotKnown(reader.Next());
  }
  const std::string index = reader.TakeName();
  reader.Expect("ON");
  const TableName table = TakeTableName(reader);
  sql += "INDEX " + IndexName(table, index) + " ON " + QuoteName(table.Table) +
         RewriteExpression(reader.TakeGroup());
  if (reader.TakeIf("INCLUDE")) reader.TakeGroup();
  if (reader.TakeIf("WHERE")) {
    Range filter{reader.Next().At, end};
    while (!reader.IsAtEnd() && !IsAmong(reader.Next(), "WITH ON")) {
      if (reader.Next().IsSymbol("(")) {
        reader.TakeGroup();
      } else {
        reader.Take();
      }
      filter.End = reader.At();
    }
    sql += " WHERE" + RewriteExpression(filter);
  }
  // The rest concerns storage: WITH (…), ON [PRIMARY].
  if (!reader.IsAtEnd() && !IsAmong(reader.Next(), "WITH ON")) FailNotKnown(reader.Next());
  return sql;
}

std::string Rewriter::RewriteDropIndex(Reader& reader) {
  reader.Take();
  reader.Take();
  const std::string head = reader.TakeIfExists() ? "DROP INDEX IF EXISTS " : "DROP INDEX ";
  const std::vector<std::string> parts = reader.TakeParts();  // index ON table, or table.index
  if (reader.TakeIf("ON")) return head + IndexName(TakeTableName(reader), parts.back());
  reader.ExpectEnd();
  if (parts.size() < 2) FailNotKnown(reader.Next());
  return head + IndexName({"", parts[parts.size() - 2]}, parts.back());
}

}  // namespace talu::standin
