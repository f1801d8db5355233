#include "KeptObjects.h"

#include "Statements.h"
#include "Text.h"
#include "sql/Names.h"

namespace talu::standin {
namespace {

constexpr std::string_view kNotedKind = "noted";

/// What does not share the names of tables.
bool IsApart(std::string_view kind) {
  return kind == "SCHEMA" || kind == "TYPE" || kind == "ROLE";
}

std::string WithName(std::string_view kind, const std::string& name) {
  return "kind = " + QuoteText(kind) + " AND name = " + QuoteText(name);
}

std::string ListOf(const std::vector<std::string>& names) {
  std::string list;
  for (const std::string& name : names) list += (list.empty() ? "" : ", ") + QuoteText(name);
  return "(" + list + ")";
}

}  // namespace

const char* const KeptObjects::kTable =
    "CREATE TABLE IF NOT EXISTS main.sqlstandin_kept (id INTEGER PRIMARY KEY, kind TEXT, name TEXT "
    "COLLATE NOCASE, text TEXT);"
    "CREATE INDEX IF NOT EXISTS main.sqlstandin_kept_names ON sqlstandin_kept (name);";

void KeptObjects::Execute(const std::string& sql) const {
  SqliteStatement(database_, sql, "").Step();
}

bool KeptObjects::Exists(const std::string& condition) const {
  return SqliteStatement(database_, "SELECT 1 FROM main.sqlstandin_kept WHERE " + condition, "")
      .Step();
}

std::vector<std::string> KeptObjects::List(const std::string& query) const {
  std::vector<std::string> names;
  SqliteStatement rows(database_, query, "");
  while (rows.Step()) names.emplace_back(rows.Text(0));
  return names;
}

std::vector<std::string> KeptObjects::Tables() const {
  return List(
      "SELECT name FROM main.sqlite_schema WHERE type = 'table' AND name NOT LIKE 'sqlite!_%' "
      "ESCAPE '!' AND name <> 'sqlstandin_kept' ORDER BY name COLLATE NOCASE");
}

bool KeptObjects::Has(std::string_view kind, const std::string& name) const {
  if (Exists(WithName(kind, name))) return true;
  return kind == "VIEW" &&
         SqliteStatement(database_,
                         "SELECT 1 FROM main.sqlite_schema WHERE type = 'view' AND name = " +
                             QuoteText(name) + " COLLATE NOCASE",
                         "")
             .Step();
}

bool KeptObjects::IsTaken(std::string_view kind, const std::string& name) const {
  if (IsApart(kind)) return Has(kind, name);
  return Exists("kind NOT IN ('noted', 'SCHEMA', 'TYPE', 'ROLE') AND name = " + QuoteText(name)) ||
         SqliteStatement(database_,
                         "SELECT 1 FROM main.sqlite_schema WHERE type IN ('table', 'view') AND "
                         "name = " +
                             QuoteText(name) + " COLLATE NOCASE",
                         "")
             .Step();
}

void KeptObjects::Add(std::string_view kind, const std::string& name, std::string_view text) const {
  Execute("INSERT INTO main.sqlstandin_kept (kind, name, text) VALUES (" + QuoteText(kind) + ", " +
          QuoteText(name) + ", " + QuoteText(text) + ")");
}

void KeptObjects::Remove(std::string_view kind, const std::string& name) const {
  Execute("DELETE FROM main.sqlstandin_kept WHERE " + WithName(kind, name));
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
  if (change == Change::Shape) Forget(name);
  if (Exists(WithName(kNotedKind, name))) return;
  Add(kNotedKind, name,
      change == Change::Shape  ? "shape"
      : change == Change::Rows ? "rows"
                               : "any");
}

void KeptObjects::Forget(const std::string& name) const {
  Remove(kNotedKind, name);
}

std::vector<std::string> KeptObjects::Unknown() const {
  return List(
      "SELECT name FROM main.sqlstandin_kept WHERE kind = 'noted' AND text <> 'any' ORDER BY id");
}

bool KeptObjects::IsUncertain(const std::vector<std::string>& names, bool isWithTexts) const {
  const std::string kinds = isWithTexts ? "('VIEW', 'SYNONYM', 'FUNCTION', 'TYPE')" : "()";
  return Exists("(kind IN " + kinds + " OR kind = 'noted' AND text <> 'rows') AND name IN " +
                ListOf(names));
}

bool KeptObjects::HasNotes() const {
  return Exists("kind = 'noted'");
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
  sql::Lexer lexer(text);
  std::string schema;
  std::string name;
  bool goesOn = false;  // a dot stands before the next part
  bool isObject = false;
  Token before;
  while (true) {
    const sql::Token token = lexer.Next();
    if (token.IsSymbol(".")) {
      goesOn = true;
      continue;
    }
    if (!goesOn && !name.empty() && (isObject || !isChanged)) add(DataName(schema, name));
    if (token.Kind == TokenKind::End) return names;
    const bool isDotted = goesOn;
    schema = isDotted ? name : std::string();
    goesOn = false;
    if (!isDotted) isObject = IsAmong(before, "DELETE FROM INSERT INTO MERGE TABLE UPDATE VIEW");
    before = token;
    const bool isName = token.Kind == TokenKind::Name ||
                        (token.Kind == TokenKind::Word && !sql::IsReserved(token.Raw));
    name = isName ? token.Value() : std::string();
    if (isChanged && token.Kind == TokenKind::String) {
      for (const std::string& each : NamesIn(token.Value(), false)) add(each);
    }
  }
}

}  // namespace talu::standin
