#pragma once

#include "Catalogue.h"
#include "SqliteDatabase.h"

namespace talu::standin {

/// The statements that make sys.databases and the others, as views of SQLite's temporary schema.
std::string SystemViewDefinitions(int databaseId);

/// What T-SQL's own functions have to know of the session.
struct SessionFacts {
  const Catalogue* Server = nullptr;
  std::string Login;
  DatabaseEntry Current;
};

/// Adds T-SQL's functions that SQLite has not: LEN, CHARINDEX, DB_NAME, OBJECT_ID and so on.
/// `facts` must outlive the connection.
void AddFunctions(SqliteDatabase& database, const SessionFacts& facts);

}  // namespace talu::standin
