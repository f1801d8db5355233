#include "SystemViews.h"

#include <random>

#include "Lexer.h"
#include "Text.h"

namespace talu::standin {
namespace {

const SessionFacts& FactsOf(sqlite3_context* context) {
  return *static_cast<const SessionFacts*>(sqlite3_user_data(context));
}

std::string TextOf(sqlite3_value* value) {
  const auto* text = reinterpret_cast<const char*>(sqlite3_value_text(value));
  return text == nullptr ? std::string()
                         : std::string(text, static_cast<std::size_t>(sqlite3_value_bytes(value)));
}

void Return(sqlite3_context* context, std::string_view text) {
  sqlite3_result_text64(context, text.data(), text.size(), SQLITE_TRANSIENT, SQLITE_UTF8);
}

using Function = void(sqlite3_context*, int, sqlite3_value**);

void Databases(sqlite3_context* context, int /*count*/, sqlite3_value** /*values*/) {
  Return(context, FactsOf(context).Server->DatabasesAsJson());
}

void Logins(sqlite3_context* context, int /*count*/, sqlite3_value** /*values*/) {
  Return(context, FactsOf(context).Server->LoginsAsJson());
}

void Users(sqlite3_context* context, int /*count*/, sqlite3_value** values) {
  Return(context, FactsOf(context).Server->UsersAsJson(sqlite3_value_int(values[0])));
}

/// LEN counts UTF-16 units without trailing blanks.
void Len(sqlite3_context* context, int /*count*/, sqlite3_value** values) {
  if (sqlite3_value_type(values[0]) == SQLITE_NULL) return;
  std::string text = TextOf(values[0]);
  text.erase(text.find_last_not_of(' ') + 1);
  sqlite3_result_int64(context, static_cast<sqlite3_int64>(CountUnits(text)));
}

/// DATALENGTH counts bytes; texts are Unicode here.
void DataLength(sqlite3_context* context, int /*count*/, sqlite3_value** values) {
  if (sqlite3_value_type(values[0]) == SQLITE_NULL) return;
  const bool isBytes = sqlite3_value_type(values[0]) == SQLITE_BLOB;
  sqlite3_result_int64(context,
                       isBytes ? sqlite3_value_bytes(values[0])
                               : static_cast<sqlite3_int64>(2 * CountUnits(TextOf(values[0]))));
}

/// CHARINDEX(part, text): from 1, 0 when not found; case is ignored.
void CharIndex(sqlite3_context* context, int /*count*/, sqlite3_value** values) {
  const std::string text = FoldName(TextOf(values[1]));
  const std::size_t at = text.find(FoldName(TextOf(values[0])));
  const bool isFound = at != std::string::npos;
  sqlite3_result_int64(
      context, isFound ? static_cast<sqlite3_int64>(CountUnits(text.substr(0, at))) + 1 : 0);
}

void NewId(sqlite3_context* context, int /*count*/, sqlite3_value** /*values*/) {
  static thread_local std::mt19937_64 random{std::random_device{}()};
  static constexpr std::string_view kDigits = "0123456789ABCDEF";
  std::string id = "xxxxxxxx-xxxx-4xxx-8xxx-xxxxxxxxxxxx";
  for (char& c : id) {
    if (c == 'x') c = kDigits[random() % 16];
  }
  Return(context, id);
}

void DbName(sqlite3_context* context, int /*count*/, sqlite3_value** /*values*/) {
  Return(context, FactsOf(context).Current.Name);
}

void LoginName(sqlite3_context* context, int /*count*/, sqlite3_value** /*values*/) {
  Return(context, FactsOf(context).Login);
}

void DbId(sqlite3_context* context, int count, sqlite3_value** values) {
  const SessionFacts& facts = FactsOf(context);
  if (count == 0 || SameName(TextOf(values[0]), facts.Current.Name)) {
    sqlite3_result_int(context, facts.Current.Id);
    return;
  }
  try {
    sqlite3_result_int(context, facts.Server->Find(TextOf(values[0])).Id);
  } catch (const SqlFailure&) {
    sqlite3_result_null(context);
  }
}

/// OBJECT_ID('dbo.Customer'[, 'U']): for the current database's own tables and views.
void ObjectId(sqlite3_context* context, int count, sqlite3_value** values) {
  try {
    const std::string name = TextOf(values[0]);
    Lexer lexer(name);
    std::string last;
    for (Token token = lexer.Next(); token.Kind != TokenKind::End; token = lexer.Next()) {
      last = token.Value();
    }
    std::string kind = count > 1 ? TextOf(values[1]) : std::string();
    const char* type = SameWord(kind, "U") ? "table" : SameWord(kind, "V") ? "view" : nullptr;
    sqlite3_stmt* raw = nullptr;
    sqlite3_prepare_v2(sqlite3_context_db_handle(context),
                       "SELECT rowid FROM main.sqlite_schema WHERE name = ?1 COLLATE NOCASE AND "
                       "type = ifnull(?2, type) AND type IN ('table', 'view')",
                       -1, &raw, nullptr);
    sqlite3_bind_text(raw, 1, last.c_str(), -1, SQLITE_TRANSIENT);
    if (type != nullptr) sqlite3_bind_text(raw, 2, type, -1, SQLITE_STATIC);
    if (sqlite3_step(raw) == SQLITE_ROW)
      sqlite3_result_int64(context, sqlite3_column_int64(raw, 0));
    sqlite3_finalize(raw);
  } catch (const SqlFailure&) {
    sqlite3_result_null(context);  // not a name
  }
}

/// A temporary view of a JSON array: its columns are the named fields.
std::string JsonView(std::string_view name, std::string_view source,
                     std::initializer_list<std::string_view> fields, std::string_view more = "") {
  std::string columns;
  for (const std::string_view field : fields) {
    // "field" or "field AS name"
    const std::size_t as = field.find(" AS ");
    const std::string_view key = field.substr(0, as);
    const std::string_view alias = as == std::string_view::npos ? field : field.substr(as + 4);
    columns += std::string(columns.empty() ? "" : ", ") + "value ->> '$." + std::string(key) +
               "' COLLATE NOCASE AS " + std::string(alias);
  }
  return "CREATE TEMP VIEW IF NOT EXISTS " + QuoteName(name) + " AS SELECT " + columns +
         std::string(more) + " FROM json_each(" + std::string(source) + ");";
}

/// A temporary view of the tables and views of the current database.
std::string ObjectView(std::string_view name, std::string_view columns, std::string_view types) {
  return "CREATE TEMP VIEW IF NOT EXISTS " + QuoteName(name) + " AS SELECT " +
         std::string(columns) + " FROM main.sqlite_schema AS o WHERE o.type IN (" +
         std::string(types) + ") AND o.name NOT LIKE 'sqlite!_%' ESCAPE '!';";
}

}  // namespace

std::string SystemViewDefinitions(int databaseId) {
  const std::string users = "sqlstandin_users(" + std::to_string(databaseId) + ")";
  const std::string type = "CASE o.type WHEN 'table' THEN 'U' ELSE 'V' END";
  const std::string object =
      "o.name COLLATE NOCASE AS name, o.rowid AS object_id, 1 AS schema_id, " + type +
      " AS type, CASE o.type WHEN 'table' THEN 'USER_TABLE' ELSE "
      "'VIEW' END AS type_desc";
  return (
      JsonView("sys.databases", "sqlstandin_databases()",
               {"name", "database_id", "state", "state_desc", "create_date"}) +
      JsonView("sysdatabases", "sqlstandin_databases()",
               {"name", "database_id AS dbid", "create_date AS crdate", "filename"}) +
      JsonView("sys.sql_logins", "sqlstandin_logins()", {"name", "type", "type_desc"}) +
      JsonView("sys.server_principals", "sqlstandin_logins()", {"name", "type", "type_desc"}) +
      JsonView("syslogins", "sqlstandin_logins()", {"name", "name AS loginname"}) +
      JsonView("sys.database_principals", users, {"name"}, ", 'S' AS type") +
      JsonView("sysusers", users, {"name"}) + ObjectView("sys.objects", object, "'table', 'view'") +
      ObjectView("sys.tables", object, "'table'") + ObjectView("sys.views", object, "'view'") +
      ObjectView("sysobjects",
                 "o.name COLLATE NOCASE AS name, o.rowid AS id, " + type + " AS xtype, " + type +
                     " AS type",
                 "'table', 'view'") +
      ObjectView("information_schema.tables",
                 "'dbo' AS TABLE_SCHEMA, o.name COLLATE NOCASE AS TABLE_NAME, CASE o.type WHEN "
                 "'table' THEN 'BASE TABLE' ELSE 'VIEW' END AS TABLE_TYPE",
                 "'table', 'view'") +
      "CREATE TEMP VIEW IF NOT EXISTS \"sys.columns\" AS SELECT o.rowid AS object_id, c.name "
      "COLLATE "
      "NOCASE AS name, c.cid + 1 AS column_id, NOT c.\"notnull\" AS is_nullable FROM "
      "main.sqlite_schema AS o, pragma_table_info(o.name) AS c WHERE o.type IN ('table', 'view');"
      "CREATE TEMP VIEW IF NOT EXISTS \"information_schema.columns\" AS SELECT 'dbo' AS "
      "TABLE_SCHEMA, o.name COLLATE NOCASE AS TABLE_NAME, c.name COLLATE NOCASE AS COLUMN_NAME, "
      "c.cid + 1 AS ORDINAL_POSITION FROM main.sqlite_schema AS o, pragma_table_info(o.name) AS c "
      "WHERE o.type IN ('table', 'view');");
}

void AddFunctions(SqliteDatabase& database, const SessionFacts& facts) {
  struct Entry {
    const char* Name;
    int Arguments;
    Function* Call;
  };
  static constexpr Entry kEntries[] = {
      {"sqlstandin_databases", 0, Databases},
      {"sqlstandin_logins", 0, Logins},
      {"sqlstandin_users", 1, Users},
      {"len", 1, Len},
      {"datalength", 1, DataLength},
      {"charindex", 2, CharIndex},
      {"newid", 0, NewId},
      {"db_name", 0, DbName},
      {"suser_name", 0, LoginName},
      {"suser_sname", 0, LoginName},
      {"db_id", 0, DbId},
      {"db_id", 1, DbId},
      {"object_id", 1, ObjectId},
      {"object_id", 2, ObjectId},
  };
  for (const Entry& entry : kEntries) {
    // SQLite only passes the pointer back, to functions that take it as constant.
    sqlite3_create_function(database.Handle(), entry.Name, entry.Arguments, SQLITE_UTF8,
                            const_cast<SessionFacts*>(&facts), entry.Call, nullptr, nullptr);
  }
}

}  // namespace talu::standin
