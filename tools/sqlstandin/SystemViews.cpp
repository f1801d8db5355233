#include "SystemViews.h"

#include <random>

#include "KeptObjects.h"
#include "Text.h"
#include "runtime/Unicode.h"

namespace talu::standin {
namespace {

using Context = sqlite3_context;
using Value = sqlite3_value;
using Function = void(Context*, int, Value**);

/// Tables, views, and what is kept, of a database; "full" is as DataName gives it.
constexpr const char* kViews = R"sql(
CREATE TEMP VIEW sqlstandin_objects AS
 SELECT name AS full, rowid AS object_id, CASE type WHEN 'table' THEN 'U' ELSE 'V' END AS type
 FROM main.sqlite_schema
 WHERE type IN ('table', 'view') AND name NOT LIKE 'sqlite!_%' ESCAPE '!' AND name <> 'sqlstandin_kept'
 UNION ALL
 SELECT name, 1000000 + id, CASE kind WHEN 'PROCEDURE' THEN 'P' WHEN 'FUNCTION' THEN 'FN'
  WHEN 'TRIGGER' THEN 'TR' WHEN 'SYNONYM' THEN 'SN' WHEN 'SEQUENCE' THEN 'SO' WHEN 'RULE' THEN 'R'
  WHEN 'DEFAULT' THEN 'D' ELSE 'V' END
 FROM main.sqlstandin_kept
 WHERE kind IN ('PROCEDURE', 'FUNCTION', 'TRIGGER', 'SYNONYM', 'SEQUENCE', 'RULE', 'DEFAULT', 'VIEW');

CREATE TEMP VIEW "sys.objects" AS
 SELECT substr(full, instr(full, '.') + 1) COLLATE NOCASE AS name, type, object_id,
  0 AS parent_object_id, 0 AS is_ms_shipped,
  CASE type WHEN 'U' THEN 'USER_TABLE' WHEN 'V' THEN 'VIEW' WHEN 'P' THEN 'SQL_STORED_PROCEDURE'
   WHEN 'TR' THEN 'SQL_TRIGGER' ELSE 'SQL_SCALAR_FUNCTION' END AS type_desc,
  ifnull((SELECT s.id + 4 FROM main.sqlstandin_kept AS s WHERE s.kind = 'SCHEMA'
   AND s.name = substr(full, 1, instr(full, '.') - 1)), 1) AS schema_id
 FROM sqlstandin_objects;
CREATE TEMP VIEW "sys.tables" AS SELECT * FROM "sys.objects" WHERE type = 'U';
CREATE TEMP VIEW "sys.views" AS SELECT * FROM "sys.objects" WHERE type = 'V';
CREATE TEMP VIEW "sys.procedures" AS SELECT * FROM "sys.objects" WHERE type = 'P';
CREATE TEMP VIEW "sys.triggers" AS SELECT * FROM "sys.objects" WHERE type = 'TR';
CREATE TEMP VIEW sysobjects AS
 SELECT name, type, object_id AS id, type AS xtype, 1 AS uid,
  CASE type WHEN 'U' THEN 3 WHEN 'V' THEN 2 WHEN 'P' THEN 4 WHEN 'TR' THEN 8 ELSE 0 END AS sysstat
 FROM "sys.objects";
CREATE TEMP VIEW "sys.schemas" AS
 SELECT 'dbo' AS name, 1 AS schema_id
 UNION ALL SELECT name, id + 4 FROM main.sqlstandin_kept WHERE kind = 'SCHEMA';
CREATE TEMP VIEW "sys.types" AS
 SELECT name, id + 256 AS user_type_id, 1 AS is_user_defined, 1 AS schema_id
 FROM main.sqlstandin_kept WHERE kind = 'TYPE';
CREATE TEMP VIEW "sys.indexes" AS
 SELECT substr(i.name, length(i.tbl_name) + 2) COLLATE NOCASE AS name, t.rowid AS object_id
 FROM main.sqlite_schema AS i
 JOIN main.sqlite_schema AS t ON t.name = i.tbl_name AND t.type = 'table' WHERE i.type = 'index';
CREATE TEMP VIEW "information_schema.tables" AS
 SELECT CASE instr(full, '.') WHEN 0 THEN 'dbo' ELSE substr(full, 1, instr(full, '.') - 1) END
   COLLATE NOCASE AS TABLE_SCHEMA,
  substr(full, instr(full, '.') + 1) COLLATE NOCASE AS TABLE_NAME,
  CASE type WHEN 'U' THEN 'BASE TABLE' ELSE 'VIEW' END AS TABLE_TYPE, full
 FROM sqlstandin_objects WHERE type IN ('U', 'V');
CREATE TEMP VIEW "information_schema.columns" AS
 SELECT TABLE_SCHEMA, TABLE_NAME, c.name COLLATE NOCASE AS COLUMN_NAME,
  c.cid + 1 AS ORDINAL_POSITION
 FROM "information_schema.tables" AS o, pragma_table_info(o.full) AS c;
CREATE TEMP VIEW "sys.columns" AS
 SELECT o.object_id, c.name COLLATE NOCASE AS name, c.cid + 1 AS column_id,
  NOT c."notnull" AS is_nullable
 FROM sqlstandin_objects AS o, pragma_table_info(o.full) AS c WHERE o.type IN ('U', 'V');
CREATE TEMP VIEW syscolumns AS SELECT object_id AS id, name FROM "sys.columns";
CREATE TEMP VIEW "sys.identity_columns" AS
 SELECT t.rowid AS object_id, c.name COLLATE NOCASE AS name, c.cid + 1 AS column_id
 FROM main.sqlite_schema AS t, pragma_table_info(t.name) AS c
 WHERE t.type = 'table' AND c.pk = 1 AND t.sql LIKE '%AUTOINCREMENT%';

CREATE TEMP VIEW "sys.databases" AS
 SELECT value ->> 'Name' COLLATE NOCASE AS name, value ->> 'Id' AS database_id,
  CASE value ->> 'IsOnline' WHEN 1 THEN 0 ELSE 6 END AS state,
  CASE value ->> 'IsOnline' WHEN 1 THEN 'ONLINE' ELSE 'OFFLINE' END COLLATE NOCASE AS state_desc,
  value ->> 'Created' AS create_date, value ->> 'WindowsFile' COLLATE NOCASE AS filename
 FROM json_each(sqlstandin_catalogue(), '$.databases');
CREATE TEMP VIEW sysdatabases AS
 SELECT name, database_id AS dbid, create_date AS crdate, filename FROM "sys.databases";
CREATE TEMP VIEW "sys.sql_logins" AS
 SELECT sqlstandin_admin() COLLATE NOCASE AS name, 'S' AS type, 'SQL_LOGIN' AS type_desc
 UNION ALL
 SELECT value ->> 'Name', CASE value ->> 'Hash' WHEN '' THEN 'U' ELSE 'S' END,
  CASE value ->> 'Hash' WHEN '' THEN 'WINDOWS_LOGIN' ELSE 'SQL_LOGIN' END
 FROM json_each(sqlstandin_catalogue(), '$.logins');
CREATE TEMP VIEW "sys.server_principals" AS SELECT * FROM "sys.sql_logins";
CREATE TEMP VIEW syslogins AS SELECT name, name AS loginname FROM "sys.sql_logins";
CREATE TEMP VIEW "sys.database_principals" AS
 SELECT 'dbo' COLLATE NOCASE AS name, 'S' AS type
 UNION ALL
 SELECT u.value, 'S' FROM json_each(sqlstandin_catalogue(), '$.databases') AS d,
  json_each(d.value, '$.Users') AS u WHERE d.value ->> 'Id' = db_id();
CREATE TEMP VIEW sysusers AS SELECT name FROM "sys.database_principals";
)sql";

const SessionFacts& FactsOf(Context* context) {
  return *static_cast<const SessionFacts*>(sqlite3_user_data(context));
}

std::string TextOf(Value* value) {
  const auto* text = reinterpret_cast<const char*>(sqlite3_value_text(value));
  return text == nullptr ? std::string()
                         : std::string(text, static_cast<std::size_t>(sqlite3_value_bytes(value)));
}

void Return(Context* context, std::string_view text) {
  sqlite3_result_text64(context, text.data(), text.size(), SQLITE_TRANSIENT, SQLITE_UTF8);
}

/// The first value that a query gives.
void ReturnQuery(Context* context, const std::string& query) {
  sqlite3_stmt* raw = nullptr;
  sqlite3_prepare_v2(sqlite3_context_db_handle(context), query.c_str(), -1, &raw, nullptr);
  if (sqlite3_step(raw) == SQLITE_ROW) sqlite3_result_value(context, sqlite3_column_value(raw, 0));
  sqlite3_finalize(raw);
}

/// LEN counts UTF-16 units without trailing blanks.
void Len(Context* context, int /*count*/, Value** values) {
  if (sqlite3_value_type(values[0]) == SQLITE_NULL) return;
  std::string text = TextOf(values[0]);
  text.erase(text.find_last_not_of(' ') + 1);
  sqlite3_result_int64(context, static_cast<sqlite3_int64>(CountUtf16(text)));
}

/// DATALENGTH counts bytes; texts are Unicode here.
void DataLength(Context* context, int /*count*/, Value** values) {
  if (sqlite3_value_type(values[0]) == SQLITE_NULL) return;
  const bool isBytes = sqlite3_value_type(values[0]) == SQLITE_BLOB;
  sqlite3_result_int64(context,
                       isBytes ? sqlite3_value_bytes(values[0])
                               : static_cast<sqlite3_int64>(2 * CountUtf16(TextOf(values[0]))));
}

/// CHARINDEX(part, text): from 1, 0 when not found; case is ignored.
void CharIndex(Context* context, int /*count*/, Value** values) {
  const std::string text = FoldName(TextOf(values[1]));
  const std::size_t at = text.find(FoldName(TextOf(values[0])));
  const bool isFound = at != std::string::npos;
  sqlite3_result_int64(
      context, isFound ? static_cast<sqlite3_int64>(CountUtf16(text.substr(0, at))) + 1 : 0);
}

void NewId(Context* context, int /*count*/, Value** /*values*/) {
  static thread_local std::mt19937_64 random{std::random_device{}()};
  static constexpr std::string_view kDigits = "0123456789ABCDEF";
  std::string id = "xxxxxxxx-xxxx-4xxx-8xxx-xxxxxxxxxxxx";
  for (char& c : id) {
    if (c == 'x') c = kDigits[random() % 16];
  }
  Return(context, id);
}

void ServerProperty(Context* context, int /*count*/, Value** values) {
  const std::string name = FoldName(TextOf(values[0]));
  if (name == "productmajorversion") Return(context, "10");
  if (name == "productversion") Return(context, "10.50.1600.1");
  if (name == "engineedition") sqlite3_result_int(context, 3);
}

void DbId(Context* context, int count, Value** values) {
  const SessionFacts& facts = FactsOf(context);
  if (count < 1 || SameName(TextOf(values[0]), facts.Current.Name)) {
    sqlite3_result_int(context, facts.Current.Id);
    return;
  }
  try {
    sqlite3_result_int(context, facts.Server->Find(TextOf(values[0])).Id);
  } catch (const SqlFailure&) {
    sqlite3_result_null(context);
  }
}

/// OBJECT_ID('dbo.Customer'[, 'U']): for what the current database has.
void ObjectId(Context* context, int count, Value** values) {
  if (count < 1) return;
  const std::vector<std::string> names = NamesIn(TextOf(values[0]), false);
  if (names.size() != 1) return;  // not a name
  std::string kind = count > 1 ? TextOf(values[1]) : std::string();
  if (SameWord(kind, "IF") || SameWord(kind, "TF")) kind = "FN";
  ReturnQuery(context,
              "SELECT object_id FROM sqlstandin_objects WHERE full = " + QuoteText(names.front()) +
                  " COLLATE NOCASE" +
                  (kind.empty() ? "" : " AND type = " + QuoteText(kind) + " COLLATE NOCASE"));
}

constexpr Function* kZero = [](Context* context, int, Value**) { sqlite3_result_int(context, 0); };
constexpr Function* kOne = [](Context* context, int, Value**) { sqlite3_result_int(context, 1); };
constexpr Function* kLogin = [](Context* context, int, Value**) {
  Return(context, FactsOf(context).Login);
};
/// With milliseconds; as a function of its own it may stand in a check.
constexpr Function* kTime = [](Context* context, int, Value**) {
  ReturnQuery(context, "SELECT strftime('%Y-%m-%d %H:%M:%f', 'now', 'localtime')");
};
constexpr Function* kUtcTime = [](Context* context, int, Value**) {
  ReturnQuery(context, "SELECT strftime('%Y-%m-%d %H:%M:%f', 'now')");
};

struct Entry {
  const char* Name;
  int Arguments;
  Function* Call;
};
const Entry kFunctions[] = {
    {"sqlstandin_catalogue", 0,
     [](Context* context, int, Value**) { Return(context, FactsOf(context).Server->AsJson()); }},
    {"sqlstandin_admin", 0,
     [](Context* context, int, Value**) {
       Return(context, FactsOf(context).Server->Administrator());
     }},
    {"db_name", 0,
     [](Context* context, int, Value**) { Return(context, FactsOf(context).Current.Name); }},
    {"db_id", -1, DbId},
    {"object_id", -1, ObjectId},
    {"serverproperty", 1, ServerProperty},
    {"suser_name", 0, kLogin},
    {"suser_sname", 0, kLogin},
    {"len", 1, Len},
    {"datalength", 1, DataLength},
    {"charindex", 2, CharIndex},
    {"newid", 0, NewId},
    {"getdate", 0, kTime},
    {"sysdatetime", 0, kTime},
    {"getutcdate", 0, kUtcTime},
    {"sysutcdatetime", 0, kUtcTime},
    // What is not there: no full-text service; and every login may do everything.
    {"fulltextserviceproperty", 1, kZero},
    {"is_srvrolemember", -1, kOne},
    {"is_member", 1, kOne},
    {"has_dbaccess", 1, kOne},
};

}  // namespace

void AddSystemViews(SqliteDatabase& database, const SessionFacts& facts) {
  for (const Entry& entry : kFunctions) {
    // SQLite only passes the pointer back, to functions that take it as constant.
    // The time is one within a statement, and may stand in a check.
    const bool isTime = entry.Call == kTime || entry.Call == kUtcTime;
    sqlite3_create_function(database.Handle(), entry.Name, entry.Arguments,
                            isTime ? SQLITE_UTF8 | SQLITE_DETERMINISTIC : SQLITE_UTF8,
                            const_cast<SessionFacts*>(&facts), entry.Call, nullptr, nullptr);
  }
  database.Execute(kViews);
}

}  // namespace talu::standin
