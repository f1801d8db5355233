#include "SqliteDatabase.h"

#include <cerrno>
#include <chrono>
#include <thread>

#include "KeptObjects.h"

namespace talu::standin {
namespace {

constexpr std::chrono::milliseconds kBusyPause{5};
/// How long a statement waits for another session's transaction: 30 s.
constexpr int kBusyTries = 6000;
/// Steps of SQLite's machine between two checks whether to stop.
constexpr int kStepsBetweenTests = 20000;
constexpr int kPagesAtOnce = 2000;
/// Marks a file as this program's: "TALU".
constexpr std::string_view kMarkFile = "PRAGMA application_id = 0x54414C55";

}  // namespace

bool SqliteDatabase::MakeFile(const std::filesystem::path& file) {
  sqlite3* raw = nullptr;
  int code =
      sqlite3_open_v2(file.c_str(), &raw,
                      SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX, nullptr);
  const std::unique_ptr<sqlite3, Closer> handle(raw);
  if (code == SQLITE_OK) code = sqlite3_exec(raw, kMarkFile.data(), nullptr, nullptr, nullptr);
  if (code != SQLITE_OK) errno = raw == nullptr ? ENOMEM : sqlite3_system_errno(raw);
  return code == SQLITE_OK;
}

SqliteDatabase::SqliteDatabase(const std::filesystem::path& file, std::string name,
                               CancelTest isCancelled)
    : name_(std::move(name)), isCancelled_(std::move(isCancelled)) {
  sqlite3* raw = nullptr;
  const int code =
      sqlite3_open_v2(file.c_str(), &raw, SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX, nullptr);
  handle_.reset(raw);
  if (code != SQLITE_OK) throw SqlFailure(message::kDatabaseInaccessible(name_), true);
  sqlite3_extended_result_codes(raw, 1);
  // A word in double quotes is a name, never a text.
  sqlite3_db_config(raw, SQLITE_DBCONFIG_DQS_DML, 0, nullptr);
  sqlite3_db_config(raw, SQLITE_DBCONFIG_DQS_DDL, 0, nullptr);
  sqlite3_busy_handler(raw, OnBusy, this);
  sqlite3_progress_handler(raw, kStepsBetweenTests, OnProgress, this);
  // Write-ahead log, without waiting for the disk: a commit is one write, and a killed process
  // loses nothing; only a power failure could.
  Execute(
      "PRAGMA synchronous = OFF; PRAGMA journal_mode = WAL; PRAGMA foreign_keys = ON; PRAGMA "
      "temp_store = MEMORY");
  Execute(KeptObjects::kTable);
}

int SqliteDatabase::OnBusy(void* self, int tries) {
  if (tries >= kBusyTries || static_cast<SqliteDatabase*>(self)->isCancelled_()) return 0;
  std::this_thread::sleep_for(kBusyPause);
  return 1;
}

int SqliteDatabase::OnProgress(void* self) {
  return static_cast<SqliteDatabase*>(self)->isCancelled_() ? 1 : 0;
}

void SqliteDatabase::Execute(const std::string& sql) {
  const int code = sqlite3_exec(handle_.get(), sql.c_str(), nullptr, nullptr, nullptr);
  if (code != SQLITE_OK) Fail(code, "");
}

void SqliteDatabase::Attach(const std::filesystem::path& file, const std::string& schema) {
  if (attached_.contains(schema)) return;
  Execute("ATTACH DATABASE " + QuoteText(file.string()) + " AS " + QuoteName(schema));
  attached_.insert(schema);
  if (!InTransaction()) Execute("PRAGMA " + QuoteName(schema) + ".synchronous = OFF");
}

void SqliteDatabase::DetachAll() {
  if (attached_.empty() || InTransaction()) return;
  for (const std::string& schema : attached_) Execute("DETACH " + QuoteName(schema));
  attached_.clear();
}

std::int64_t SqliteDatabase::Count(const std::string& sql) const {
  SqliteStatement row(*this, sql, "");
  row.Step();
  return sqlite3_column_int64(row.Handle(), 0);
}

std::vector<TableColumn> SqliteDatabase::Columns(const std::string& schema,
                                                 const std::string& table) const {
  std::vector<TableColumn> columns;
  SqliteStatement rows(
      *this,
      "SELECT name FROM pragma_table_info(" + QuoteText(table) + ", " + QuoteText(schema) + ")",
      "");
  while (rows.Step()) {
    TableColumn column;
    column.Name = rows.Text(0);
    int isIdentity = 0;
    sqlite3_table_column_metadata(handle_.get(), schema.c_str(), table.c_str(), column.Name.c_str(),
                                  nullptr, nullptr, nullptr, nullptr, &isIdentity);
    column.IsIdentity = isIdentity != 0;
    columns.push_back(std::move(column));
  }
  return columns;
}

std::int64_t SqliteDatabase::CopyTo(const std::filesystem::path& file,
                                    const std::function<void(int)>& progress) {
  sqlite3* raw = nullptr;
  const int opened =
      sqlite3_open_v2(file.c_str(), &raw,
                      SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX, nullptr);
  const std::unique_ptr<sqlite3, Closer> copy(raw);
  if (opened != SQLITE_OK) Fail(opened, "BACKUP");
  sqlite3_exec(raw, "PRAGMA synchronous = OFF", nullptr, nullptr, nullptr);
  sqlite3_backup* backup = sqlite3_backup_init(raw, "main", handle_.get(), "main");
  if (backup == nullptr) Fail(sqlite3_errcode(raw), "BACKUP");
  const auto finish = [](sqlite3_backup* each) { sqlite3_backup_finish(each); };
  std::unique_ptr<sqlite3_backup, decltype(finish)> finisher(backup, finish);
  int code = SQLITE_OK;
  int busy = 0;
  while (code != SQLITE_DONE) {
    if (isCancelled_()) throw Cancelled();
    code = sqlite3_backup_step(backup, kPagesAtOnce);
    if ((code & 0xFF) == SQLITE_BUSY && ++busy < kBusyTries) {
      std::this_thread::sleep_for(kBusyPause);
    } else if (code != SQLITE_OK && code != SQLITE_DONE) {
      Fail(code, "BACKUP");
    }
    const int total = sqlite3_backup_pagecount(backup);
    if (total > 0) progress(100 * (total - sqlite3_backup_remaining(backup)) / total);
  }
  const std::int64_t pages = sqlite3_backup_pagecount(backup);
  finisher.reset();
  // The copy is one plain file, even for a reader that may not write next to it.
  sqlite3_exec(raw, "PRAGMA journal_mode = DELETE", nullptr, nullptr, nullptr);
  return pages;
}

SqliteStatement::SqliteStatement(const SqliteDatabase& database, const std::string& sql,
                                 std::string_view verb)
    : database_(database), verb_(verb) {
  sqlite3_stmt* raw = nullptr;
  // With its NUL the text is not copied.
  const int code = sqlite3_prepare_v2(database.Handle(), sql.c_str(),
                                      static_cast<int>(sql.size()) + 1, &raw, nullptr);
  handle_.reset(raw);
  if (code != SQLITE_OK) database.Fail(code, verb_);
  if (raw == nullptr) throw SqlFailure(message::kSyntaxNear(verb_), true);
}

std::string_view SqliteStatement::Text(int column) const {
  const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(handle_.get(), column));
  const auto size = static_cast<std::size_t>(sqlite3_column_bytes(handle_.get(), column));
  return text == nullptr ? std::string_view() : std::string_view(text, size);
}

bool SqliteStatement::Step() {
  const int code = sqlite3_step(handle_.get());
  if (code != SQLITE_ROW && code != SQLITE_DONE) database_.Fail(code, verb_);
  return code == SQLITE_ROW;
}

}  // namespace talu::standin
