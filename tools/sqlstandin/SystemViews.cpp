#include "SystemViews.h"

#include <random>

#include "KeptObjects.h"
#include "Lexer.h"
#include "Text.h"
#include "runtime/Unicode.h"

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
  sqlite3_result_int64(context, static_cast<sqlite3_int64>(CountUtf16(text)));
}

/// DATALENGTH counts bytes; texts are Unicode here.
void DataLength(sqlite3_context* context, int /*count*/, sqlite3_value** values) {
  if (sqlite3_value_type(values[0]) == SQLITE_NULL) return;
  const bool isBytes = sqlite3_value_type(values[0]) == SQLITE_BLOB;
  sqlite3_result_int64(context,
                       isBytes ? sqlite3_value_bytes(values[0])
                               : static_cast<sqlite3_int64>(2 * CountUtf16(TextOf(values[0]))));
}

/// CHARINDEX(part, text): from 1, 0 when not found; case is ignored.
void CharIndex(sqlite3_context* context, int /*count*/, sqlite3_value** values) {
  const std::string text = FoldName(TextOf(values[1]));
  const std::size_t at = text.find(FoldName(TextOf(values[0])));
  const bool isFound = at != std::string::npos;
  sqlite3_result_int64(
      context, isFound ? static_cast<sqlite3_int64>(CountUtf16(text.substr(0, at))) + 1 : 0);
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

/// The time with its milliseconds; as a function of its own it may stand in a check.
void Time(sqlite3_context* context, std::string_view modifier) {
  sqlite3_stmt* raw = nullptr;
  const std::string query =
      "SELECT strftime('%Y-%m-%d %H:%M:%f', 'now'" + std::string(modifier) + ")";
  sqlite3_prepare_v2(sqlite3_context_db_handle(context), query.c_str(), -1, &raw, nullptr);
  if (sqlite3_step(raw) == SQLITE_ROW) sqlite3_result_value(context, sqlite3_column_value(raw, 0));
  sqlite3_finalize(raw);
}

void LocalTime(sqlite3_context* context, int /*count*/, sqlite3_value** /*values*/) {
  Time(context, ", 'localtime'");
}

void UtcTime(sqlite3_context* context, int /*count*/, sqlite3_value** /*values*/) {
  Time(context, "");
}

void ServerProperty(sqlite3_context* context, int /*count*/, sqlite3_value** values) {
  const std::string name = FoldName(TextOf(values[0]));
  if (name == "productmajorversion") Return(context, "10");
  if (name == "productversion") Return(context, "10.50.1600.1");
  if (name == "engineedition") sqlite3_result_int(context, 3);
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

/// Tables, views, and what is kept, of the current database; "full" is as DataName gives it.
constexpr std::string_view kObjects =
    "(SELECT name AS full, rowid AS object_id, CASE type WHEN 'table' THEN 'U' ELSE 'V' END AS "
    "type, 0 AS parent_object_id FROM main.sqlite_schema WHERE type IN ('table', 'view') AND name "
    "NOT LIKE 'sqlite!_%' ESCAPE '!' AND name <> 'sqlstandin_kept' UNION ALL SELECT name, 1000000 "
    "+ "
    "id, CASE kind WHEN 'PROCEDURE' THEN 'P' WHEN 'FUNCTION' THEN 'FN' WHEN 'TRIGGER' THEN 'TR' "
    "WHEN 'SYNONYM' THEN 'SN' WHEN 'SEQUENCE' THEN 'SO' WHEN 'RULE' THEN 'R' WHEN 'DEFAULT' THEN "
    "'D' ELSE 'V' END, 0 FROM main.sqlstandin_kept WHERE kind IN ('PROCEDURE', 'FUNCTION', "
    "'TRIGGER', 'SYNONYM', 'SEQUENCE', 'RULE', 'DEFAULT', 'VIEW'))";

/// OBJECT_ID('dbo.Customer'[, 'U']): for what the current database has.
void ObjectId(sqlite3_context* context, int count, sqlite3_value** values) {
  const std::vector<std::string> names = NamesIn(TextOf(values[0]), false);
  if (names.size() != 1) return;  // not a name
  std::string kind = count > 1 ? TextOf(values[1]) : std::string();
  if (SameWord(kind, "IF") || SameWord(kind, "TF")) kind = "FN";
  const std::string query =
      "SELECT object_id FROM " + std::string(kObjects) +
      " WHERE full = " + QuoteText(names.front()) + " COLLATE NOCASE" +
      (kind.empty() ? "" : " AND type = " + QuoteText(kind) + " COLLATE NOCASE");
  sqlite3_stmt* raw = nullptr;
  sqlite3_prepare_v2(sqlite3_context_db_handle(context), query.c_str(), -1, &raw, nullptr);
  if (sqlite3_step(raw) == SQLITE_ROW) sqlite3_result_int64(context, sqlite3_column_int64(raw, 0));
  sqlite3_finalize(raw);
}

/// What is not there: no full-text service, no property of anything.
void Zero(sqlite3_context* context, int /*count*/, sqlite3_value** /*values*/) {
  sqlite3_result_int(context, 0);
}

void One(sqlite3_context* context, int /*count*/, sqlite3_value** /*values*/) {
  sqlite3_result_int(context, 1);
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

/// A temporary view of the objects of some types.
std::string ObjectView(std::string_view name, std::string_view more, std::string_view types) {
  return "CREATE TEMP VIEW IF NOT EXISTS " + QuoteName(name) +
         " AS SELECT substr(full, instr(full, '.') + 1) COLLATE NOCASE AS name, type, " +
         std::string(more) + " FROM " + std::string(kObjects) + " WHERE type IN (" +
         std::string(types) + ");";
}

/// One of the columns of all tables and views.
std::string ColumnView(std::string_view name, std::string_view columns) {
  return "CREATE TEMP VIEW IF NOT EXISTS " + QuoteName(name) + " AS SELECT " +
         std::string(columns) + " FROM " + std::string(kObjects) +
         " AS o, pragma_table_info(o.full) AS c WHERE o.type IN ('U', 'V');";
}

}  // namespace

std::string SystemViewDefinitions(int databaseId) {
  const std::string users = "sqlstandin_users(" + std::to_string(databaseId) + ")";
  constexpr std::string_view kAll = "'U', 'V', 'P', 'FN', 'TR', 'SN', 'SO', 'R', 'D'";
  constexpr std::string_view kSchema =
      "ifnull((SELECT s.id + 4 FROM main.sqlstandin_kept AS s WHERE s.kind = 'SCHEMA' AND s.name = "
      "substr(full, 1, instr(full, '.') - 1)), 1) AS schema_id";
  const std::string object =
      "object_id, parent_object_id, 0 AS is_ms_shipped, CASE type WHEN 'U' THEN 'USER_TABLE' WHEN "
      "'V' THEN 'VIEW' WHEN 'P' THEN 'SQL_STORED_PROCEDURE' WHEN 'TR' THEN 'SQL_TRIGGER' ELSE "
      "'SQL_SCALAR_FUNCTION' END AS type_desc, " +
      std::string(kSchema);
  constexpr std::string_view kSchemaName =
      "CASE instr(full, '.') WHEN 0 THEN 'dbo' ELSE substr(full, 1, instr(full, '.') - 1) END "
      "COLLATE NOCASE AS TABLE_SCHEMA, ";
  constexpr std::string_view kTableName =
      "substr(full, instr(full, '.') + 1) COLLATE NOCASE AS TABLE_NAME";
  return JsonView("sys.databases", "sqlstandin_databases()",
                  {"name", "database_id", "state", "state_desc", "create_date"}) +
         JsonView("sysdatabases", "sqlstandin_databases()",
                  {"name", "database_id AS dbid", "create_date AS crdate", "filename"}) +
         JsonView("sys.sql_logins", "sqlstandin_logins()", {"name", "type", "type_desc"}) +
         JsonView("sys.server_principals", "sqlstandin_logins()", {"name", "type", "type_desc"}) +
         JsonView("syslogins", "sqlstandin_logins()", {"name", "name AS loginname"}) +
         JsonView("sys.database_principals", users, {"name"}, ", 'S' AS type") +
         JsonView("sysusers", users, {"name"}) + ObjectView("sys.objects", object, kAll) +
         ObjectView("sys.tables", object, "'U'") + ObjectView("sys.views", object, "'V'") +
         ObjectView("sys.procedures", object, "'P'") + ObjectView("sys.triggers", object, "'TR'") +
         ObjectView("sysobjects",
                    "object_id AS id, type AS xtype, 1 AS uid, CASE type WHEN 'U' THEN 3 WHEN 'V' "
                    "THEN 2 WHEN 'P' THEN 4 WHEN 'TR' THEN 8 ELSE 0 END AS sysstat",
                    kAll) +
         "CREATE TEMP VIEW IF NOT EXISTS \"sys.schemas\" AS SELECT 'dbo' AS name, 1 AS schema_id "
         "UNION ALL SELECT name, id + 4 FROM main.sqlstandin_kept WHERE kind = 'SCHEMA';"
         "CREATE TEMP VIEW IF NOT EXISTS \"sys.types\" AS SELECT name, id + 256 AS user_type_id, 1 "
         "AS is_user_defined, 1 AS schema_id FROM main.sqlstandin_kept WHERE kind = 'TYPE';"
         "CREATE TEMP VIEW IF NOT EXISTS \"sys.indexes\" AS SELECT substr(i.name, "
         "length(i.tbl_name) + 2) COLLATE NOCASE AS name, t.rowid AS object_id FROM "
         "main.sqlite_schema AS i JOIN main.sqlite_schema AS t ON t.name = i.tbl_name AND t.type = "
         "'table' WHERE i.type = 'index';" +
         ObjectView("information_schema.tables",
                    std::string(kSchemaName) + std::string(kTableName) +
                        ", CASE type WHEN 'U' THEN 'BASE TABLE' ELSE 'VIEW' END AS TABLE_TYPE",
                    "'U', 'V'") +
         ColumnView("sys.columns",
                    "o.object_id, c.name COLLATE NOCASE AS name, c.cid + 1 AS column_id, NOT "
                    "c.\"notnull\" AS is_nullable") +
         ColumnView("syscolumns", "o.object_id AS id, c.name COLLATE NOCASE AS name") +
         "CREATE TEMP VIEW IF NOT EXISTS \"sys.identity_columns\" AS SELECT t.rowid AS object_id, "
         "c.name COLLATE NOCASE AS name, c.cid + 1 AS column_id FROM main.sqlite_schema AS t, "
         "pragma_table_info(t.name) AS c WHERE t.type = 'table' AND c.pk = 1 AND t.sql LIKE "
         "'%AUTOINCREMENT%';" +
         ColumnView("information_schema.columns",
                    std::string(kSchemaName) + std::string(kTableName) +
                        ", c.name COLLATE NOCASE AS COLUMN_NAME, c.cid + 1 AS ORDINAL_POSITION");
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
      {"getdate", 0, LocalTime},
      {"sysdatetime", 0, LocalTime},
      {"getutcdate", 0, UtcTime},
      {"sysutcdatetime", 0, UtcTime},
      {"serverproperty", 1, ServerProperty},
      {"fulltextserviceproperty", 1, Zero},
      {"is_srvrolemember", 1, One},
      {"is_srvrolemember", 2, One},
      {"is_member", 1, One},
      {"has_dbaccess", 1, One},
      {"object_id", 1, ObjectId},
      {"object_id", 2, ObjectId},
  };
  for (const Entry& entry : kEntries) {
    // SQLite only passes the pointer back, to functions that take it as constant.
    // The time is one within a statement, and may stand in a check.
    const bool isTime = entry.Call == LocalTime || entry.Call == UtcTime;
    sqlite3_create_function(database.Handle(), entry.Name, entry.Arguments,
                            isTime ? SQLITE_UTF8 | SQLITE_DETERMINISTIC : SQLITE_UTF8,
                            const_cast<SessionFacts*>(&facts), entry.Call, nullptr, nullptr);
  }
}

}  // namespace talu::standin
