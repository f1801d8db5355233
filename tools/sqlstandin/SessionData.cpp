// The statements that SQLite executes.
#include <limits>

#include "ColumnType.h"
#include "Session.h"
#include "Text.h"

namespace talu::standin {
namespace {

/// The type of an expression without a declared type: its first value decides.
ResultColumn TypeOfValue(sqlite3_stmt* row, int index) {
  switch (sqlite3_column_type(row, index)) {
    case SQLITE_INTEGER:
      return {"", ValueType::BigInt, 0};
    case SQLITE_FLOAT:
      return {"", ValueType::Float, 0};
    case SQLITE_BLOB:
      return {"", ValueType::Bytes, 0};
    default:
      return {"", ValueType::Text, 0};
  }
}

/// 109 and 110 mention the column list; an INSERT that got one from the rewriter has none.
SqlFailure WithoutColumnList(const SqlFailure& failure) {
  const std::int32_t number = failure.Messages.front().Number;
  const bool isCount = number == message::kMoreColumnsThanValues.Number ||
                       number == message::kFewerColumnsThanValues.Number;
  return isCount ? SqlFailure(message::kColumnCount(), true) : failure;
}

}  // namespace

SqliteDatabase& Session::Current() {
  std::unique_ptr<SqliteDatabase>& database = open_[facts_.Current.Id];
  if (!database) {
    try {
      database =
          std::make_unique<SqliteDatabase>(facts_.Current.File, facts_.Current.Name, isCancelled_);
    } catch (...) {
      open_.erase(facts_.Current.Id);
      throw;
    }
    AddSystemViews(*database, facts_);
  }
  if (transactions_ > 0 && !database->InTransaction()) database->Execute("BEGIN IMMEDIATE");
  return *database;
}

bool Session::IsTrue(Range condition) {
  const std::string sql = "SELECT CASE WHEN" +
                          Rewriter(batch_, *this).RewriteExpression(condition) +
                          " THEN 1 ELSE 0 END";
  SqliteStatement query(Current(), sql, "IF");
  return query.Step() && sqlite3_column_int(query.Handle(), 0) != 0;
}

void Session::Do(const PrintText& statement) {
  const std::string sql =
      "SELECT (" + Rewriter(batch_, *this).RewriteExpression(statement.Expression) + ")";
  SqliteStatement query(Current(), sql, "PRINT");
  if (query.Step()) {
    reply_->Tell({0, 0, 1, std::string(query.Text(0))}, LineOf(statement.Expression.Begin));
  }
  Done();
}

void Session::Do(const RaiseError& statement) {
  const SqlMessage message{kOwnMessageNumber, static_cast<std::uint8_t>(statement.Severity), 1,
                           statement.Text};
  constexpr int kHighestInformation = 10;
  if (statement.Severity > kHighestInformation) throw SqlFailure(message);
  reply_->Tell(message, LineOf(statement_->Text.Begin));
  Done();
}

void Session::Do(const AssignVariables& statement) {
  const bool declares = HeadOf(*statement_) == "DECLARE";
  for (const auto& [name, value] : statement.All) {
    const std::string key = FoldName(name);
    if (!declares && !variables_.contains(key)) {
      throw SqlFailure(message::kUndeclaredVariable(name), true);
    }
    std::string sql = "SELECT NULL";
    if (value.End > value.Begin) sql = "SELECT " + Rewriter(batch_, *this).RewriteExpression(value);
    SqliteStatement query(Current(), "SELECT quote((" + sql + "))", "SET");
    variables_[key].reset();
    if (query.Step()) variables_[key] = std::string(query.Text(0));
  }
  Done();
}

void Session::Do(const DataStatement& statement) {
  using Verb = DataStatement::Verb;
  Current().DetachAll();
  Rewriter rewriter(batch_, *this);
  const std::vector<std::string> statements = rewriter.Rewrite(statement.What, statement_->Text);
  if (statement.What == Verb::CreateTable) {
    NeedSchemaOf(rewriter.Target());
    if (KeptObjects(Current()).IsTaken("TABLE", rewriter.Target())) {
      throw SqlFailure(message::kObjectExists(rewriter.Target()));
    }
  }
  SqliteDatabase& database = Current();
  // What is one statement to the client is executed whole or not at all.
  const bool needsSavepoint = statements.size() > 1;
  if (needsSavepoint) database.Execute("SAVEPOINT whole");
  const auto undo = [&] {
    if (needsSavepoint)
      database.Execute("ROLLBACK TO whole; RELEASE whole; PRAGMA writable_schema = RESET");
  };
  try {
    for (std::size_t i = 0; i < statements.size(); ++i) {
      RunSql(statements[i], i + 1 == statements.size());
    }
    for (const auto& [constraint, count] : rewriter.Checks()) {
      if (database.Count(count) > 0) {
        throw SqlFailure(message::kConflict("ALTER TABLE", constraint, facts_.Current.Name));
      }
    }
  } catch (const SqlFailure& failure) {
    undo();
    if (rewriter.AddedColumns()) throw WithoutColumnList(failure);
    throw;
  } catch (...) {
    undo();
    throw;
  }
  if (statement.What == Verb::CreateTable)
    KeptObjects(database).Remove(KeptObjects::kNoted, rewriter.Target());
  if (needsSavepoint) database.Execute("RELEASE whole");
  const bool counts = statement.What == Verb::Insert || statement.What == Verb::Update ||
                      statement.What == Verb::Delete;
  if (counts) {
    const auto command = statement.What == Verb::Insert   ? DoneCommand::Insert
                         : statement.What == Verb::Update ? DoneCommand::Update
                                                          : DoneCommand::Delete;
    Done(command, static_cast<std::uint64_t>(rowCount_));
  } else if (statement.What != Verb::Select) {
    rowCount_ = 0;
    Done();
  } else {
    Done(DoneCommand::Select, static_cast<std::uint64_t>(rowCount_));
  }
}

void Session::RunSql(const std::string& sql, bool isLast) {
  SqliteDatabase& database = Current();
  // Errors name the first word.
  const std::string head = HeadOf(*statement_);
  SqliteStatement statement(
      database, sql, head.starts_with("TRUNCATE") ? "DELETE" : head.substr(0, head.find(' ')));
  if (sqlite3_column_count(statement.Handle()) > 0) {
    SendRows(statement);
    return;
  }
  while (statement.Step()) {
  }
  if (isLast) rowCount_ = sqlite3_changes64(database.Handle());
}

void Session::SendRows(SqliteStatement& rows) {
  sqlite3_stmt* row = rows.Handle();
  bool hasRow = rows.Step();
  std::vector<ResultColumn> columns;
  for (int i = 0; i < sqlite3_column_count(row); ++i) {
    const char* declared = sqlite3_column_decltype(row, i);
    std::optional<ResultColumn> type;
    if (declared != nullptr) type = ResultTypeOf(declared);
    if (!type) type = hasRow ? TypeOfValue(row, i) : ResultColumn{"", ValueType::Text, 0};
    type->Name = sqlite3_column_name(row, i);
    columns.push_back(std::move(*type));
  }
  reply_->Columns(columns);
  rowCount_ = 0;
  for (; hasRow; hasRow = rows.Step()) {
    if (rowCount_ % 256 == 255 && isCancelled_()) throw Cancelled();
    // Nothing of a row is sent until the whole row is available.
    for (int i = 0; i < sqlite3_column_count(row); ++i) {
      const ResultColumn& column = columns[static_cast<std::size_t>(i)];
      const int stored = sqlite3_column_type(row, i);
      const bool wantsNumber = column.Type == ValueType::Int || column.Type == ValueType::BigInt ||
                               column.Type == ValueType::Float;
      const bool isNumber = stored == SQLITE_INTEGER || stored == SQLITE_FLOAT;
      if (stored != SQLITE_NULL && wantsNumber && !isNumber) {
        throw SqlFailure(message::kConversionError(
            "nvarchar", column.Type == ValueType::Float ? "float" : "int"));
      }
    }
    reply_->BeginRow();
    for (int i = 0; i < sqlite3_column_count(row); ++i) {
      SendValue(rows, i, columns[static_cast<std::size_t>(i)]);
    }
    ++rowCount_;
  }
}

void Session::SendValue(SqliteStatement& rows, int index, const ResultColumn& column) {
  sqlite3_stmt* row = rows.Handle();
  if (sqlite3_column_type(row, index) == SQLITE_NULL) {
    reply_->Null(column);
    return;
  }
  switch (column.Type) {
    case ValueType::Int:
    case ValueType::BigInt:
      reply_->Int(column, sqlite3_column_int64(row, index));
      return;
    case ValueType::Float:
      reply_->Float(sqlite3_column_double(row, index));
      return;
    case ValueType::Text:
      reply_->Text(column, rows.Text(index));
      return;
    case ValueType::Bytes: {
      const auto* bytes = static_cast<const char*>(sqlite3_column_blob(row, index));
      const auto size = static_cast<std::size_t>(sqlite3_column_bytes(row, index));
      reply_->Bytes(bytes == nullptr ? std::string_view() : std::string_view(bytes, size));
      return;
    }
  }
}

}  // namespace talu::standin
