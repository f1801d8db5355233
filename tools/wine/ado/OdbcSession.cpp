#include "OdbcSession.h"

#include <sql.h>
#include <sqlext.h>
#include <sqlucode.h>

#include <algorithm>
#include <cstdint>
#include <utility>
#include <vector>

#include "Automation.h"

namespace talu::wine {

namespace {

constexpr auto kUnspecifiedFailure = static_cast<HRESULT>(0x80004005);  // E_FAIL
constexpr auto kLoginRefused = static_cast<HRESULT>(0x80040E4D);        // DB_SEC_E_AUTH_FAILED
constexpr auto kStatementErrors = static_cast<HRESULT>(0x80040E14);     // DB_E_ERRORSINCOMMAND
constexpr auto kIntegrityBroken = static_cast<HRESULT>(0x80040E2F);     // DB_E_INTEGRITYVIOLATION
constexpr auto kTableMissing = static_cast<HRESULT>(0x80040E37);        // DB_E_NOTABLE
constexpr auto kTimeoutReached = static_cast<HRESULT>(0x80040E31);      // DB_E_ABORTLIMITREACHED

constexpr SQLINTEGER kLoginFailedForUser = 18456;  // the server's own number
constexpr int kConnectionTimeout = 15;             // seconds: the data-access library's default

/// One diagnostic record, as the driver reports it.
struct Diagnostic {
  std::wstring State;
  SQLINTEGER ServerNumber = 0;
  std::wstring Text;

  bool IsWarning() const { return State.starts_with(L"01"); }
  /// The driver's own errors, above all a broken link, have no number or one of its library's.
  bool IsDriversOwn() const { return ServerNumber == 0 || ServerNumber / 100 == 200; }
  bool IsTimeout() const { return State.starts_with(L"HYT"); }
  bool IsLoginRefused() const { return State == L"28000" || ServerNumber == kLoginFailedForUser; }
};

std::vector<Diagnostic> Diagnostics(SQLSMALLINT type, SQLHANDLE handle) {
  std::vector<Diagnostic> records;
  std::wstring text(1024, L'\0');
  for (SQLSMALLINT number = 1;; ++number) {
    wchar_t state[6] = {};
    SQLINTEGER serverNumber = 0;
    SQLSMALLINT length = 0;
    const SQLRETURN code = SQLGetDiagRecW(type, handle, number, state, &serverNumber, text.data(),
                                          static_cast<SQLSMALLINT>(text.size()), &length);
    if (!SQL_SUCCEEDED(code)) return records;
    const std::size_t whole = static_cast<std::size_t>(length);
    if (whole >= text.size()) {  // cut short: get this record again
      text.resize(whole + 1);
      --number;
      continue;
    }
    records.push_back({state, serverNumber, text.substr(0, whole)});
  }
}

HRESULT ConnectNumber(const Diagnostic& record) {
  return record.IsLoginRefused() ? kLoginRefused : kUnspecifiedFailure;
}

HRESULT StatementNumber(const Diagnostic& record) {
  if (record.IsTimeout()) return kTimeoutReached;
  if (record.IsDriversOwn()) return kUnspecifiedFailure;
  if (record.State == L"23000") return kIntegrityBroken;
  if (record.State == L"42S02") return kTableMissing;
  return kStatementErrors;
}

/// The record that explains the failure: the refused login rather than the driver's note that it
/// could not connect, else the first that is more than a warning; `unsaid` when there is none.
Diagnostic Cause(SQLSMALLINT type, SQLHANDLE handle, const wchar_t* unsaid = L"Unspecified error") {
  const std::vector<Diagnostic> records = Diagnostics(type, handle);
  for (const Diagnostic& record : records) {
    if (record.IsLoginRefused()) return record;
  }
  for (const Diagnostic& record : records) {
    if (!record.IsWarning()) return record;
  }
  // A driver that cannot be loaded is only reported as a warning, a link that breaks midway not at
  // all.
  return records.empty() ? Diagnostic{L"HY000", 0, unsaid} : records.front();
}

AutomationError ProviderError(HRESULT number, const std::wstring& text) {
  return {number, L"Microsoft OLE DB Provider for ODBC Drivers", text};
}

std::wstring Trimmed(const std::wstring& text) {
  const auto first = text.find_first_not_of(L" \t");
  if (first == std::wstring::npos) return {};
  return text.substr(first, text.find_last_not_of(L" \t") - first + 1);
}

/// The same string without blanks around names and values: the driver manager below would take them
/// as part of the name.
std::wstring Tidied(const std::wstring& connectionString) {
  std::wstring tidy;
  std::size_t start = 0;
  while (start < connectionString.size()) {
    const std::size_t end = std::min(connectionString.find(L';', start), connectionString.size());
    const std::wstring pair = connectionString.substr(start, end - start);
    start = end + 1;
    const std::size_t equals = pair.find(L'=');
    if (equals == std::wstring::npos) continue;
    tidy += Trimmed(pair.substr(0, equals)) + L'=' + Trimmed(pair.substr(equals + 1)) + L';';
  }
  return tidy;
}

/// A number where the interface expects a pointer.
SQLPOINTER AsPointer(std::uintptr_t number) {
  return reinterpret_cast<SQLPOINTER>(number);  // NOLINT(performance-no-int-to-ptr)
}

/// A statement handle, freed at the end of its scope, even with results unread.
class Statement {
 public:
  explicit Statement(SQLHANDLE connection) {
    if (!SQL_SUCCEEDED(SQLAllocHandle(SQL_HANDLE_STMT, connection, &handle_))) {
      const Diagnostic cause = Cause(SQL_HANDLE_DBC, connection);
      throw ProviderError(StatementNumber(cause), cause.Text);
    }
  }
  ~Statement() {
    if (handle_ != nullptr) SQLFreeHandle(SQL_HANDLE_STMT, handle_);
  }
  Statement(const Statement&) = delete;
  Statement& operator=(const Statement&) = delete;

  SQLHANDLE Handle() const { return handle_; }
  /// The caller frees it.
  SQLHANDLE Keep() { return std::exchange(handle_, nullptr); }

 private:
  SQLHANDLE handle_ = nullptr;
};

}  // namespace

OdbcSession::OdbcSession(const std::wstring& connectionString) {
  SQLAllocHandle(SQL_HANDLE_ENV, nullptr, &environment_);
  SQLSetEnvAttr(environment_, SQL_ATTR_ODBC_VERSION, AsPointer(SQL_OV_ODBC3), 0);
  if (!SQL_SUCCEEDED(SQLAllocHandle(SQL_HANDLE_DBC, environment_, &connection_))) {
    SQLFreeHandle(SQL_HANDLE_ENV, environment_);
    throw ProviderError(kUnspecifiedFailure, L"The ODBC driver manager cannot be loaded");
  }
  SQLSetConnectAttrW(connection_, SQL_ATTR_LOGIN_TIMEOUT, AsPointer(kConnectionTimeout), 0);
  std::wstring text = Tidied(connectionString);
  const SQLRETURN code = SQLDriverConnectW(connection_, nullptr, text.data(), SQL_NTS, nullptr, 0,
                                           nullptr, SQL_DRIVER_NOPROMPT);
  if (SQL_SUCCEEDED(code)) return;
  // Wine's newer driver manager fails without a message when it knows neither source nor driver.
  const Diagnostic cause =
      Cause(SQL_HANDLE_DBC, connection_,
            L"[Microsoft][ODBC Driver Manager] Data source name not found and no default driver "
            L"specified");
  Close();
  throw ProviderError(ConnectNumber(cause), cause.Text);
}

OdbcSession::~OdbcSession() {
  Close();
}

void OdbcSession::Close() {
  if (connection_ == nullptr) return;
  Discard();
  SQLDisconnect(connection_);
  SQLFreeHandle(SQL_HANDLE_DBC, connection_);
  SQLFreeHandle(SQL_HANDLE_ENV, environment_);
  connection_ = nullptr;
}

void OdbcSession::Discard() {
  if (rows_ != nullptr) SQLFreeHandle(SQL_HANDLE_STMT, std::exchange(rows_, nullptr));
}

bool OdbcSession::Execute(const std::wstring& batch, int timeout) {
  if (HasRows()) {
    // The provider would quietly open a second connection, with another current database.
    throw ProviderError(kUnspecifiedFailure,
                        L"Connection is busy with results for another command");
  }
  Statement statement(connection_);
  SQLSetStmtAttrW(statement.Handle(), SQL_ATTR_QUERY_TIMEOUT,
                  AsPointer(static_cast<std::uintptr_t>(timeout)), 0);
  // A text ends at its first NUL, as with OLE DB, whose commands take no length. The interface is
  // not const-correct: it only reads the text.
  SQLRETURN code =
      SQLExecDirectW(statement.Handle(), const_cast<SQLWCHAR*>(batch.c_str()), SQL_NTS);

  // A first statement that changed no row returns "no data"; others may follow it.
  if (code == SQL_NO_DATA) code = SQL_SUCCESS;
  // ADO executes up to the first recordset only, as the documentation of NextRecordset says. Counts
  // of rows are none with this provider: an error behind them is raised (knowledge base, 254304),
  // and a backup that tells its progress comes to its end. The driver manager ends the results with
  // the first error.
  while (SQL_SUCCEEDED(code)) {
    SQLSMALLINT columns = 0;
    SQLNumResultCols(statement.Handle(), &columns);
    if (columns > 0) {
      rows_ = statement.Keep();
      return true;
    }
    code = SQLMoreResults(statement.Handle());
  }
  if (code == SQL_NO_DATA) return false;
  const Diagnostic cause = Cause(SQL_HANDLE_STMT, statement.Handle());
  throw ProviderError(StatementNumber(cause), cause.Text);
}

}  // namespace talu::wine
