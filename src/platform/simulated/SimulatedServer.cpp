#include "platform/simulated/SimulatedServer.h"

#include <algorithm>
#include <cctype>
#include <utility>

#include "platform/simulated/SimulatedShell.h"
#include "runtime/TextFunctions.h"

namespace talu {
namespace {

// ADO's own error numbers; source: its documentation (ErrorValueEnum).
constexpr std::int32_t kObjectClosed = 3704;
constexpr std::int32_t kObjectOpen = 3705;
constexpr std::int32_t kInvalidConnection = 3709;
// The provider's; source: the OLE DB error codes DB_SEC_E_AUTH_FAILED and DB_E_ERRORSINCOMMAND.
constexpr std::int32_t kLoginRefused = -2147217843;
constexpr std::int32_t kErrorsInCommand = -2147217900;

constexpr const char* kProvider = "Microsoft OLE DB Provider for ODBC Drivers";

RuntimeError AdoError(std::int32_t number, const char* text) {
  return RuntimeError(number, text, "ADODB");
}

/// The value of `key` in a connection text of pairs; empty without it.
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

RuntimeError StatementError(const std::string& text) {
  return RuntimeError(kErrorsInCommand, "[Microsoft][ODBC SQL Server Driver][SQL Server]" + text,
                      kProvider);
}

std::unique_ptr<Connection> SimulatedServer::CreateConnection() {
  journal_.Count("create connection");
  return std::make_unique<SimulatedConnection>(*this, journal_);
}

std::unique_ptr<Command> SimulatedServer::CreateCommand() {
  journal_.Count("create command");
  return std::make_unique<SimulatedCommand>(*this);
}

void SimulatedServer::FailStatements(const std::string& text, const RuntimeError& error) {
  failures_.emplace_back(text, error);
}

void SimulatedServer::Connect(const std::string& text) {
  const std::string dsn = ValueOf(text, "DSN");
  if (!dsn.empty() && !odbc_.HasSource(dsn)) {
    throw RuntimeError(error::Unspecified,
                       "[Microsoft][ODBC Driver Manager] Data source name not found and no default "
                       "driver specified",
                       kProvider);
  }
  const bool ofServer = dsn.empty() || odbc_.IsOfServer(dsn);
  if ((!Reachable && ofServer) || (dsn.empty() && ValueOf(text, "SERVER").empty())) {
    throw RuntimeError(
        error::Unspecified,
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
  JournalEvent event{"sql", {{"text", statement}}};
  if (timeout != 0) event.Fields.emplace_back("timeout", std::int64_t{timeout});
  journal_.Request(std::move(event), true, [&] {
    if (!Reachable) {
      throw RuntimeError(error::Unspecified,
                         "[Microsoft][ODBC SQL Server Driver]Communication link failure",
                         kProvider);
    }
    for (const auto& [text, failure] : failures_) {
      if (Contains(statement, text)) throw RuntimeError(failure);
    }
    if (!AcceptAll) Carry(statement);
  });
}

// Carries out what changes the names that the server keeps; the first refusal ends the statement.
void SimulatedServer::Carry(const std::string& statement) {
  const std::vector<std::string> words = SqlWords(statement);
  const auto word = [&words](std::size_t at) { return at < words.size() ? words[at] : ""; };
  bool skip = false;
  for (std::size_t at = 0; at < words.size(); ++at) {
    const std::string verb = UCase(word(at));
    const std::string kind = UCase(word(at + 1));
    if (verb == "IF") {
      const bool negated = kind == "NOT";
      std::size_t end = at;
      while (end < words.size() && word(end) != ")") ++end;
      const std::string last = word(end - 1);
      const bool known = last.starts_with('\'') && (Databases.contains(UCase(last.substr(1))) ||
                                                    Logins.contains(UCase(last.substr(1))));
      skip = known == negated;
      at = end;
      continue;
    }
    if (kind != "DATABASE" && kind != "LOGIN" && verb != "USE") continue;
    if (at > 0 && (UCase(word(at - 1)) == "GRANT" || UCase(word(at - 1)) == "DENY")) continue;
    if (std::exchange(skip, false)) continue;
    const bool login = kind == "LOGIN";
    const std::string name = verb == "USE" ? word(at + 1) : word(at + 2);
    auto& names = login ? Logins : Databases;
    const bool there = names.contains(UCase(name)) || (!login && UCase(name) == "MASTER");
    if (verb == "CREATE") {
      if (there && login) {
        throw StatementError("The server principal '" + name + "' already exists.");
      }
      if (there) {
        throw StatementError("Database '" + name +
                             "' already exists. Choose a different database name.");
      }
      names.insert(UCase(name));
    } else if (verb == "DROP") {
      if (!there && login) {
        throw StatementError("Cannot drop the login '" + name +
                             "', because it does not exist or you do not have permission.");
      }
      if (!there) {
        throw StatementError("Cannot drop the database '" + name +
                             "', because it does not exist or you do not have permission.");
      }
      names.erase(UCase(name));
    } else if (verb == "ALTER" && !there && !login) {
      throw StatementError("User does not have permission to alter database '" + name +
                           "', the database does not exist, or the database is not in a state that "
                           "allows access checks.");
    } else if (verb == "USE" && !there) {
      throw StatementError("Database '" + name +
                           "' does not exist. Make sure that the name is entered correctly.");
    }
    ++at;
  }
}

std::vector<std::string> SqlWords(std::string_view statement) {
  std::vector<std::string> words;
  const auto until = [&](std::size_t from, char quote) {
    std::size_t at = from;
    while (at < statement.size()) {
      if (statement[at] == quote) {
        if (at + 1 < statement.size() && statement[at + 1] == quote) {
          ++at;
        } else {
          break;
        }
      }
      ++at;
    }
    return at;
  };
  const auto isWord = [](char character) {
    const auto byte = static_cast<unsigned char>(character);
    return byte >= 0x80 || std::isalnum(byte) != 0 || Contains("_@#$", {&character, 1});
  };
  for (std::size_t at = 0; at < statement.size();) {
    const char character = statement[at];
    if (character == '\'' || character == '[' || character == '"') {
      const std::size_t end = until(at + 1, character == '[' ? ']' : character);
      words.push_back((character == '\'' ? "'" : "") +
                      std::string(statement.substr(at + 1, end - at - 1)));
      at = end + 1;
    } else if (statement.substr(at, 2) == "--") {
      at = std::min(statement.find('\n', at), statement.size());
    } else if (statement.substr(at, 2) == "/*") {
      at = std::min(statement.find("*/", at + 2), statement.size() - 2) + 2;
    } else if (isWord(character)) {
      std::size_t end = at;
      while (end < statement.size() && isWord(statement[end])) ++end;
      if (end < statement.size() && statement[end] == '\'' && end - at == 1 &&
          UCase(character) == 'N') {
        ++at;  // N'...'
        continue;
      }
      words.emplace_back(statement.substr(at, end - at));
      at = end;
    } else {
      if (static_cast<unsigned char>(character) > ' ') words.emplace_back(1, character);
      ++at;
    }
  }
  return words;
}

}  // namespace talu
