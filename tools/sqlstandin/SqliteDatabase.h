#pragma once

#include <sqlite3.h>

#include <filesystem>
#include <functional>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "Messages.h"
#include "Rewriter.h"

namespace talu::standin {

/// Called while something runs; true stops it.
using CancelTest = std::function<bool()>;

/// One session's connection to a database's file. For one thread only.
class SqliteDatabase {
 public:
  /// Creates an empty database file; false, with errno, when it cannot.
  static bool MakeFile(const std::filesystem::path& file);

  /// Opens an existing file. Raises SqlFailure (945) when it cannot be used.
  SqliteDatabase(const std::filesystem::path& file, std::string name, CancelTest isCancelled);

  sqlite3* Handle() const { return handle_.get(); }

  /// The number that a query gives; `sql` has no text from a client.
  std::int64_t Count(const std::string& sql) const;
  /// Executes statements without rows and without text from a client.
  void Execute(const std::string& sql);
  /// Makes another database's tables available under a name of their own, until DetachAll.
  void Attach(const std::filesystem::path& file, const std::string& schema);
  /// Releases the other databases; within a transaction they stay.
  void DetachAll();
  bool InTransaction() const { return sqlite3_get_autocommit(handle_.get()) == 0; }
  /// The columns of a table; empty when there is none. `schema` is "main" or an attached name.
  std::vector<TableColumn> Columns(const std::string& schema, const std::string& table) const;
  /// Copies the whole database to a new file, which must not exist. Reports per cent to `progress`.
  /// Returns the number of pages.
  std::int64_t CopyTo(const std::filesystem::path& file, const std::function<void(int)>& progress);

  /// Raises SQLite's last error as the server's message; `verb` is the statement's first word.
  /// Raises Cancelled when the statement was stopped.
  [[noreturn]] void Fail(int code, std::string_view verb) const;

 private:
  struct Closer {
    void operator()(sqlite3* handle) const { sqlite3_close_v2(handle); }
  };
  static int OnBusy(void* self, int tries);
  static int OnProgress(void* self);

  std::unique_ptr<sqlite3, Closer> handle_;
  std::string name_;
  CancelTest isCancelled_;
  std::set<std::string> attached_;
};

/// A prepared statement.
class SqliteStatement {
 public:
  /// Raises SqlFailure for what SQLite does not accept.
  SqliteStatement(const SqliteDatabase& database, const std::string& sql, std::string_view verb);

  /// Moves to the next row; false at the end. Raises SqlFailure.
  bool Step();
  sqlite3_stmt* Handle() const { return handle_.get(); }
  /// A column of the row, until the next step.
  std::string_view Text(int column) const;

 private:
  struct Finalizer {
    void operator()(sqlite3_stmt* handle) const { sqlite3_finalize(handle); }
  };
  const SqliteDatabase& database_;
  std::string verb_;
  std::unique_ptr<sqlite3_stmt, Finalizer> handle_;
};

}  // namespace talu::standin
