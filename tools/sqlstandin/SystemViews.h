#pragma once

#include "Catalogue.h"
#include "SqliteDatabase.h"

namespace talu::standin {

/// What T-SQL's functions need to know about the session.
struct SessionFacts {
  const Catalogue* Server = nullptr;
  std::string Login;
  DatabaseEntry Current;
};

/// Adds sys.databases and the other system views, which always show the current state, and T-SQL's
/// functions that SQLite lacks: LEN, CHARINDEX, DB_NAME, OBJECT_ID and so on. `facts` must outlive
/// the connection.
void AddSystemViews(SqliteDatabase& database, const SessionFacts& facts);

}  // namespace talu::standin
