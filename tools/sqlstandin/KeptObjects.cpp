#include "KeptObjects.h"

#include <algorithm>
#include <array>

#include "Statements.h"
#include "Text.h"
#include "sql/Names.h"

namespace talu::standin {
namespace {

/// A table or a view of SQLite's own.
const char* const kStored = "SELECT 1 FROM main.sqlite_schema WHERE type IN ('table', 'view')";

std::string WithName(std::string_view kind, const std::string& name) {
  return "kind = " + QuoteText(kind) + " AND name = " + QuoteText(name);
}

}  // namespace

const char* const KeptObjects::kTable =
    "CREATE TABLE IF NOT EXISTS main.sqlstandin_kept (id INTEGER PRIMARY KEY, kind TEXT, name TEXT "
    "COLLATE NOCASE, text TEXT);"
    "CREATE INDEX IF NOT EXISTS main.sqlstandin_kept_names ON sqlstandin_kept (name);";

bool KeptObjects::Exists(const std::string& condition) const {
  return !List("SELECT 1 FROM main.sqlstandin_kept WHERE " + condition).empty();
}

std::vector<std::string> KeptObjects::List(const std::string& query) const {
  std::vector<std::string> names;
  SqliteStatement rows(database_, query, "");
  while (rows.Step()) names.emplace_back(rows.Text(0));
  return names;
}

bool KeptObjects::Has(std::string_view kind, const std::string& name) const {
  return Exists(WithName(kind, name)) ||
         (kind == "VIEW" &&
          !List(kStored + (" AND type = 'view' AND name = " + QuoteText(name)) + " COLLATE NOCASE")
               .empty());
}

bool KeptObjects::IsTaken(std::string_view kind, const std::string& name) const {
  if (kind == "SCHEMA" || kind == "TYPE" || kind == "ROLE") return Has(kind, name);
  return Exists("kind NOT IN ('noted', 'SCHEMA', 'TYPE', 'ROLE') AND name = " + QuoteText(name)) ||
         !List(kStored + (" AND name = " + QuoteText(name)) + " COLLATE NOCASE").empty();
}

void KeptObjects::Add(std::string_view kind, const std::string& name, std::string_view text) const {
  List("INSERT INTO main.sqlstandin_kept (kind, name, text) VALUES (" + QuoteText(kind) + ", " +
       QuoteText(name) + ", " + QuoteText(text) + ")");
}

void KeptObjects::Remove(std::string_view kind, const std::string& name) const {
  List("DELETE FROM main.sqlstandin_kept WHERE " + WithName(kind, name));
}

std::set<std::string> KeptObjects::Names(std::string_view kind) const {
  std::set<std::string> names;
  for (const std::string& name :
       List("SELECT name FROM main.sqlstandin_kept WHERE kind = " + QuoteText(kind))) {
    names.insert(FoldName(name));
  }
  return names;
}

std::string KeptObjects::TextOf(const std::string& name) const {
  const auto texts = List(
      "SELECT text FROM main.sqlstandin_kept WHERE kind <> 'noted' AND name = " + QuoteText(name));
  return texts.empty() ? std::string() : texts.front();
}

void KeptObjects::Note(const std::string& name, Change change) const {
  static constexpr std::array<const char*, 3> kTexts = {"shape", "rows", "any"};
  if (change == Change::Shape) Remove(kNoted, name);
  if (!Has(kNoted, name)) Add(kNoted, name, kTexts.at(static_cast<std::size_t>(change)));
}

bool KeptObjects::IsUncertain(const std::vector<std::string>& names, bool isWithTexts) const {
  const std::string kinds = isWithTexts ? "('VIEW', 'SYNONYM', 'FUNCTION', 'TYPE')" : "()";
  return std::ranges::any_of(names, [&](const std::string& name) {
    return Exists("name = " + QuoteText(name) + " AND (kind IN " + kinds +
                  " OR kind = 'noted' AND text <> 'rows')");
  });
}

std::map<std::string, std::int64_t> KeptObjects::Counts() const {
  std::map<std::string, std::int64_t> counts;
  SqliteStatement rows(database_,
                       "SELECT lower(kind), COUNT(*) FROM main.sqlstandin_kept WHERE kind <> "
                       "'noted' GROUP BY kind",
                       "");
  while (rows.Step()) {
    counts[std::string(rows.Text(0))] = sqlite3_column_int64(rows.Handle(), 1);
  }
  return counts;
}

std::vector<std::string> NamesIn(std::string_view text, bool isChanged) {
  std::vector<std::string> names;
  std::set<std::string> seen;
  const auto add = [&](const std::string& name) {
    if (seen.insert(name).second) names.push_back(name);
  };
  const auto isName = [](const Token& token) {
    return token.Kind == TokenKind::Name ||
           (token.Kind == TokenKind::Word && !sql::IsReserved(token.Raw));
  };
  sql::Lexer lexer(text);
  Token before;
  for (Token token = lexer.Next(); token.Kind != TokenKind::End;) {
    const bool isObject = IsAmong(before, "DELETE FROM INSERT INTO MERGE TABLE UPDATE VIEW");
    if (isChanged && token.Kind == TokenKind::String) {
      for (const std::string& each : NamesIn(token.Value(), false)) add(each);
    }
    // The parts of a name: the last, and the schema before it.
    std::string schema;
    std::string name = isName(token) ? token.Value() : std::string();
    before = token;
    for (token = lexer.Next(); token.IsSymbol(".");) {
      schema = name;
      token = lexer.Next();
      name = isName(token) ? token.Value() : std::string();
      if (!token.IsSymbol(".") && token.Kind != TokenKind::End) token = lexer.Next();
    }
    if (!name.empty() && (isObject || !isChanged)) add(DataName(schema, name));
  }
  return names;
}

}  // namespace talu::standin
