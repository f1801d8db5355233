#pragma once

#include "Catalogue.h"
#include "SqliteDatabase.h"

namespace talu::standin {

/// The statements that create sys.databases and the others, as views in SQLite's temporary schema.
std::string SystemViewDefinitions(int databaseId);

/// What T-SQL's functions need to know about the session.
struct SessionFacts {
  const Catalogue* Server = nullptr;
  std::string Login;
  DatabaseEntry Current;
};

/// Adds T-SQL's functions that SQLite lacks: LEN, CHARINDEX, DB_NAME, OBJECT_ID and so on. `facts`
/// must outlive the connection.
void AddFunctions(SqliteDatabase& database, const SessionFacts& facts);

}  // namespace talu::standin
