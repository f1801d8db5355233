#include "Rewriter.h"

#include <algorithm>
#include <array>

#include "KeptObjects.h"
#include "Messages.h"
#include "TableDefinition.h"
#include "TokenCopier.h"
#include "runtime/TextFunctions.h"
#include "sql/Names.h"

namespace talu::standin {

namespace {

/// Words of the language that are not reserved.
constexpr std::string_view kClauses =
    "APPLY CUBE FILESTREAM GENERATED INCLUDE MASKED OFFSET OUTPUT PATH PERCENT PERIOD RETURNS "
    "ROLLUP SYSTEM_VERSIONING TIES";

}  // namespace

std::string QuoteName(std::string_view name) {
  std::string quoted = "\"";
  for (const char c : name) {
    quoted += c;
    if (c == '"') quoted += c;
  }
  return quoted += '"';
}

std::string QuoteText(std::string_view text) {
  std::string quoted;
  if (text.find('\0') == std::string_view::npos) {
    quoted.reserve(text.size() + 2);
    quoted += '\'';
    for (const char c : text) {
      quoted += c;
      if (c == '\'') quoted += c;
    }
    return quoted += '\'';
  }
  // SQLite's parser stops at a NUL, so a text with one is written as bytes.
  static constexpr std::string_view kDigits = "0123456789ABCDEF";
  quoted.reserve(text.size() * 2 + 20);
  quoted += "CAST(X'";
  for (const char c : text) {
    quoted += kDigits[static_cast<unsigned char>(c) >> 4];
    quoted += kDigits[static_cast<unsigned char>(c) & 0xF];
  }
  return quoted += "' AS TEXT)";
}

std::string Rewriter::TableName::Quoted() const {
  return Prefix + QuoteName(Table);
}

void Rewriter::FailAt(const Token& token) {
  const bool isWord =
      token.Kind == TokenKind::Word && (sql::IsReserved(token.Raw) || IsAmong(token, kClauses));
  throw NotKnown(isWord || token.Kind == TokenKind::Symbol ? UCase(token.Raw) : std::string());
}

std::vector<std::string> Rewriter::Rewrite(DataStatement::Verb verb, Range text) {
  using Verb = DataStatement::Verb;
  switch (verb) {
    case Verb::Insert:
      return {RewriteInsert(text)};
    case Verb::CreateTable:
      return TableDefinition(batch_, *this).Create(text, target_);
    case Verb::AlterTable:
      return TableDefinition(batch_, *this).Alter(text);
    case Verb::Truncate:
      return RewriteTruncate(text);
    case Verb::CreateIndex:
      return {RewriteCreateIndex(text)};
    case Verb::DropIndex:
      return {RewriteDropIndex(text)};
    case Verb::DropTable:
      return RewriteDropTable(text);
    case Verb::Delete: {
      // FROM may be omitted.
      Lexer lexer(batch_, text.Begin, text.End);
      const Token head = lexer.Next();
      if (!head.Is("DELETE") || lexer.Peek().Is("FROM")) return {RewriteExpression(text)};
      return {"DELETE FROM " + RewriteExpression({head.At + head.Raw.size(), text.End})};
    }
    case Verb::Select:
    case Verb::Update:
      break;
  }
  return {RewriteExpression(text)};
}

std::string Rewriter::RewriteExpression(Range range) {
  return TokenCopier(Lexer(batch_, range.Begin, range.End), environment_).CopyAll();
}

Rewriter::TableName Rewriter::TakeTableName(Lexer& lexer) {
  Token last = lexer.Peek();
  std::vector<std::string> parts(1);
  while (true) {
    const Token token = lexer.Peek();
    if (token.IsName()) {
      last = lexer.Next();
      if (last.Kind == TokenKind::Word && last.Raw.front() == '#') FailAt(last);
      parts.back() = last.Value();
    } else if (!token.IsSymbol(".")) {
      FailAt(token);
    }
    if (!lexer.Peek().IsSymbol(".")) break;
    last = lexer.Next();
    parts.emplace_back();
  }
  TableName name;
  name.Table = parts.back();
  if (name.Table.empty()) FailAt(lexer.Peek());
  if (parts.size() == 3) name.Prefix = environment_.PrefixOf(parts.front());
  const std::string schema = parts.size() < 2 ? "" : parts[parts.size() - 2];
  if (parts.size() > 3) throw NotKnown("a linked server");
  name.Table = DataName(schema, name.Table);
  return name;
}

std::string Rewriter::RewriteView(Range text) {
  while (batch_[text.End - 1] == ';' || batch_[text.End - 1] <= ' ') --text.End;
  Lexer lexer(batch_, text.Begin, text.End);
  while (!lexer.Next().Is("VIEW")) {
  }
  target_ = TakeTableName(lexer).Table;
  std::string columns;
  if (lexer.Peek().IsSymbol("(")) columns = RewriteExpression(TakeGroup(lexer));
  while (!lexer.Peek().Is("AS")) {  // WITH SCHEMABINDING
    if (lexer.Next().Kind == TokenKind::End) FailAt(lexer.Peek());
  }
  return "CREATE VIEW " + QuoteName(target_) + columns +
         RewriteExpression({lexer.Peek().At, text.End});
}

bool Rewriter::HasType(const Lexer& lexer, const Token& first) {
  const std::vector<std::string> names =
      NamesIn(batch_.substr(first.At, lexer.Peek().At - first.At), false);
  return !names.empty() && environment_.HasType(names.front());
}

std::string Rewriter::RewriteInsert(Range range) {
  Lexer lexer(batch_, range.Begin, range.End);
  Token last = lexer.Next();
  if (!last.Is("INSERT")) return RewriteExpression(range);  // after common table expressions
  if (lexer.Peek().Is("INTO")) last = lexer.Next();
  const TableName table = TakeTableName(lexer);
  const std::vector<TableColumn> columns = environment_.Columns(table.Prefix, table.Table);
  const bool allowsIdentity = environment_.AllowsIdentityInsert(table.Table);
  std::string list;
  Token next = lexer.Peek();
  if (next.IsSymbol("(")) {
    last = lexer.Next();
    do {
      const Token name = lexer.Next();
      if (!name.IsName()) FailAt(name);
      const std::string column = name.Value();
      const bool isIdentity = std::any_of(columns.begin(), columns.end(), [&](const auto& each) {
        return each.IsIdentity && SameName(each.Name, column);
      });
      if (isIdentity && !allowsIdentity) {
        throw SqlFailure(message::kExplicitIdentity(table.Table));
      }
      list += (list.empty() ? "" : ", ") + QuoteName(column);
      last = lexer.Next();
    } while (last.IsSymbol(","));
    if (!last.IsSymbol(")")) FailAt(last);
    next = lexer.Peek();
  } else if (!next.Is("DEFAULT") && std::any_of(columns.begin(), columns.end(),
                                                [](const auto& each) { return each.IsIdentity; })) {
    // Without a list the values are for all columns except the identity.
    addedColumns_ = true;
    for (const TableColumn& column : columns) {
      if (!column.IsIdentity) list += (list.empty() ? "" : ", ") + QuoteName(column.Name);
    }
  }
  if (next.Kind == TokenKind::End) FailAt(next);
  std::string sql = "INSERT INTO " + table.Quoted();
  if (!list.empty()) sql += " (" + list + ")";
  return sql + " " + RewriteExpression({next.At, range.End});
}

std::vector<std::string> Rewriter::RewriteTruncate(Range range) {
  Lexer lexer(batch_, range.Begin, range.End);
  lexer.Next();
  lexer.Next();
  const TableName table = TakeTableName(lexer);
  if (lexer.Peek().Kind != TokenKind::End) FailAt(lexer.Peek());
  std::vector<std::string> statements{"DELETE FROM " + table.Quoted()};
  const auto columns = environment_.Columns(table.Prefix, table.Table);
  if (std::any_of(columns.begin(), columns.end(),
                  [](const auto& each) { return each.IsIdentity; })) {
    statements.push_back("DELETE FROM " + table.Prefix + "sqlite_sequence WHERE name = " +
                         QuoteText(table.Table) + " COLLATE NOCASE");
  }
  return statements;
}

std::vector<std::string> Rewriter::RewriteDropTable(Range range) {
  Lexer lexer(batch_, range.Begin, range.End);
  lexer.Next();
  Token last = lexer.Next();
  std::string head = "DROP TABLE ";
  if (lexer.Peek().Is("IF")) {
    last = lexer.Next();
    if (!lexer.Peek().Is("EXISTS")) FailAt(lexer.Peek());
    last = lexer.Next();
    head += "IF EXISTS ";
  }
  std::vector<std::string> statements;
  do {
    statements.push_back(head + TakeTableName(lexer).Quoted());
    last = lexer.Next();
  } while (last.IsSymbol(","));
  if (last.Kind != TokenKind::End) FailAt(last);
  return statements;
}

namespace {

/// An index name belongs to its table in T-SQL and to the whole database in SQLite.
std::string IndexName(const Rewriter::TableName& table, std::string_view index) {
  return table.Prefix + QuoteName(table.Table + "." + std::string(index));
}

}  // namespace

std::string Rewriter::RewriteCreateIndex(Range range) {
  Lexer lexer(batch_, range.Begin, range.End);
  Token last = lexer.Next();
  std::string sql = "CREATE ";
  while (!last.Is("INDEX")) {
    if (last.Is("UNIQUE")) sql += "UNIQUE ";
    last = lexer.Next();
    if (last.Kind == TokenKind::End) FailAt(last);
  }
  const Token index = lexer.Next();
  if (!index.IsName()) FailAt(index);
  last = lexer.Next();
  if (!last.Is("ON")) FailAt(last);
  const TableName table = TakeTableName(lexer);
  const Token open = lexer.Peek();
  if (!open.IsSymbol("(")) FailAt(open);
  const Range columns = TakeGroup(lexer);
  sql += "INDEX " + IndexName(table, index.Value()) + " ON " + QuoteName(table.Table) +
         RewriteExpression(columns);
  if (TakeIf(lexer, "INCLUDE")) TakeGroup(lexer);
  if (TakeIf(lexer, "WHERE")) {
    Range filter{lexer.Peek().At, range.End};
    for (Lexer rest = lexer; rest.Peek().Kind != TokenKind::End; rest.Next()) {
      if (rest.Peek().IsSymbol("(")) TakeGroup(rest);
      if (rest.Peek().Is("WITH") || rest.Peek().Is("ON")) {
        filter.End = rest.Peek().At;
        break;
      }
    }
    return sql + " WHERE" + RewriteExpression(filter);
  }
  // The rest concerns storage: WITH (…), ON [PRIMARY].
  const Token next = lexer.Peek();
  if (next.Kind != TokenKind::End && !next.Is("WITH") && !next.Is("ON")) FailAt(next);
  return sql;
}

std::string Rewriter::RewriteDropIndex(Range range) {
  Lexer lexer(batch_, range.Begin, range.End);
  lexer.Next();
  Token last = lexer.Next();
  std::string head = "DROP INDEX ";
  if (lexer.Peek().Is("IF")) {
    lexer.Next();
    lexer.Next();
    head += "IF EXISTS ";
  }
  std::vector<std::string> parts;  // index ON table, or table.index
  do {
    const Token name = lexer.Next();
    if (!name.IsName()) FailAt(name);
    parts.push_back(name.Value());
    last = lexer.Next();
  } while (last.IsSymbol("."));
  if (last.Is("ON")) return head + IndexName(TakeTableName(lexer), parts.back());
  if (last.Kind != TokenKind::End || parts.size() < 2) FailAt(last);
  return head + IndexName({"", parts[parts.size() - 2]}, parts.back());
}

}  // namespace talu::standin
