#include "platform/simulated/SimulatedServer.h"

#include <utility>

#include "platform/simulated/SimulatedShell.h"
#include "runtime/TextFunctions.h"

namespace talu {
namespace {

// ADO's own error numbers; source: its documentation (ErrorValueEnum).
constexpr std::int32_t kObjectClosed = 3704;
constexpr std::int32_t kObjectOpen = 3705;
constexpr std::int32_t kInvalidConnection = 3709;
// The provider's; source: the OLE DB error code DB_SEC_E_AUTH_FAILED.
constexpr std::int32_t kLoginRefused = -2147217843;

RuntimeError AdoError(std::int32_t number, const char* text) {
  return RuntimeError(number, text, "ADODB");
}

/// The value of `key` in a connection text of pairs; empty when there is none.
std::string ValueOf(const std::string& text, const std::string& key) {
  for (const std::string& pair : Split(text, ';')) {
    const std::size_t equals = pair.find('=');
    if (equals == std::string::npos) continue;
    if (UCase(TrimView(pair.substr(0, equals))) == key) return Trim(pair.substr(equals + 1));
  }
  return "";
}

}  // namespace

class SimulatedConnection : public Connection {
 public:
  SimulatedConnection(SimulatedServer& server, Journal& journal)
      : server_(server), journal_(journal) {}

  void ConnectionString(const std::string& text) override {
    if (open_) throw AdoError(kObjectOpen, "Operation is not allowed when the object is open.");
    text_ = text;
  }

  void Open(const std::string& text) override {
    if (open_) throw AdoError(kObjectOpen, "Operation is not allowed when the object is open.");
    if (!text.empty()) text_ = text;
    journal_.Request({"connect", {{"text", text_}}}, true, [&] { server_.Connect(text_); });
    open_ = true;
  }

  void Close() override {
    if (!open_)
      throw AdoError(kObjectClosed, "Operation is not allowed when the object is closed.");
    journal_.Request({"disconnect", {}}, false, [] {});
    open_ = false;
  }

  int State() override { return open_ ? 1 : 0; }

 private:
  SimulatedServer& server_;
  Journal& journal_;
  std::string text_;
  bool open_ = false;
};

class SimulatedCommand : public Command {
 public:
  explicit SimulatedCommand(SimulatedServer& server) : server_(server) {}

  void ActiveConnection(Connection& connection) override {
    RequireOpen(&connection);
    connection_ = &connection;
  }
  void CommandTimeout(int seconds) override { timeout_ = seconds; }
  void CommandText(const std::string& text) override { text_ = text; }
  void Execute() override {
    RequireOpen(connection_);
    server_.Run(text_, timeout_);
  }

 private:
  static void RequireOpen(Connection* connection) {
    if (connection != nullptr && connection->State() != 0) return;
    throw AdoError(
        kInvalidConnection,
        "The connection cannot be used to perform this operation. It is either closed or "
        "invalid in this context.");
  }

  SimulatedServer& server_;
  Connection* connection_ = nullptr;
  int timeout_ = 0;
  std::string text_;
};

std::unique_ptr<Connection> SimulatedServer::CreateConnection() {
  journal_.Count("create connection", "");
  return std::make_unique<SimulatedConnection>(*this, journal_);
}

std::unique_ptr<Command> SimulatedServer::CreateCommand() {
  journal_.Count("create command", "");
  return std::make_unique<SimulatedCommand>(*this);
}

void SimulatedServer::FailStatements(const std::string& text, const RuntimeError& error) {
  failures_.emplace_back(text, error);
}

void SimulatedServer::Connect(const std::string& text) {
  contents_.Use("");
  const std::string dsn = ValueOf(text, "DSN");
  if (!dsn.empty() && !odbc_.HasSource(dsn)) {
    throw RuntimeError(error::kUnspecified,
                       "[Microsoft][ODBC Driver Manager] Data source name not found and no default "
                       "driver specified",
                       kProvider);
  }
  const bool ofServer = dsn.empty() || odbc_.IsOfServer(dsn);
  if ((!Reachable && ofServer) || (dsn.empty() && ValueOf(text, "SERVER").empty())) {
    throw RuntimeError(
        error::kUnspecified,
        "[Microsoft][ODBC SQL Server Driver][DBNETLIB]SQL Server does not exist or access denied.",
        kProvider);
  }
  if (!Password.empty() && ValueOf(text, "PWD") != Password && !AcceptAll) {
    throw RuntimeError(kLoginRefused,
                       "[Microsoft][ODBC SQL Server Driver][SQL Server]Login failed for user '" +
                           ValueOf(text, "UID") + "'.",
                       kProvider);
  }
}

void SimulatedServer::Run(const std::string& statement, int timeout) {
  doubt_.clear();
  JournalEvent event{"sql", {{"text", statement}}};
  if (timeout != 0) event.Fields.emplace_back("timeout", std::int64_t{timeout});
  journal_.Request(std::move(event), true, [&] {
    if (!Reachable) {
      throw RuntimeError(error::kUnspecified,
                         "[Microsoft][ODBC SQL Server Driver]Communication link failure",
                         kProvider);
    }
    for (const auto& [text, failure] : failures_) {
      if (Contains(statement, text)) throw RuntimeError(failure);
    }
    if (!AcceptAll) Take(statement);
  });
}

}  // namespace talu
