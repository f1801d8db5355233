#pragma once

#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/Ado.h"
#include "platform/simulated/DatabaseContents.h"
#include "platform/simulated/Journal.h"
#include "platform/simulated/Refusals.h"
#include "platform/simulated/ServerMessages.h"
#include "platform/simulated/StatementReader.h"
#include "sql/Lexer.h"

namespace talu {

class SimulatedOdbc;

/// A database server that keeps the names of databases and logins, and of users, roles and tables
/// in the databases that are made here, and records every statement. Statements that it need not
/// understand succeed.
class SimulatedServer : public Ado {
 public:
  SimulatedServer(Journal& journal, SimulatedOdbc& odbc) : journal_(journal), odbc_(odbc) {}

  std::unique_ptr<Connection> CreateConnection() override;
  std::unique_ptr<Command> CreateCommand() override;

  /// Statements that contain `text` fail with this error.
  void FailStatements(const std::string& text, const RuntimeError& error);
  /// None of them fails any more.
  void Mend() { failures_.clear(); }

  /// Takes a batch's changes of names, without a journal. Returns what the server refuses of it,
  /// but not that statements stand where they must not.
  std::vector<Refusal> ApplyNames(std::string_view statement);

  /// Existing databases and logins, upper-cased.
  std::set<std::string> Databases;
  std::set<std::string> Logins;
  /// The only password that is accepted; empty: every login is accepted.
  std::string Password;
  bool Reachable = true;
  /// What of the last statement it could not tell, for instance "whether there is a database
  /// Sales": what EXEC makes is not seen here. Empty when it could tell.
  const std::string& Doubt() const { return doubt_; }
  /// Keeps nothing and accepts every statement except those set to fail.
  bool AcceptAll = false;

 private:
  friend class SimulatedConnection;
  friend class SimulatedCommand;

  void Connect(const std::string& text);
  void Run(const std::string& statement, int timeout);
  void Take(std::string_view statement);
  void Compile(std::string_view batch) const;
  /// Whether the batch can create something, name a database, a login or a user, call a procedure,
  /// or need a table of which that is not known yet.
  bool MayMatter(std::string_view statement);
  void TakeTableWord(const sql::Token& word, const sql::Token& before, std::string_view statement,
                     const DatabaseContents::Setting& setting);
  void FollowNames(std::string_view statement, Refusals& refused);
  void ApplyName(const sql::Token& verb, const sql::Token& named, bool login,
                 const DatabaseContents::Setting& setting);
  bool RequireLogin(const std::string& name, std::size_t at, Refusals& refused);
  void ApplyCall(StatementReader reader, std::string_view statement,
                 const DatabaseContents::Setting& setting);
  /// Whether the upper-cased name exists.
  bool Has(const std::string& name, bool login) const;

  Journal& journal_;
  SimulatedOdbc& odbc_;
  std::vector<std::pair<std::string, RuntimeError>> failures_;
  /// Statements that are not seen here may have made some, or may when a procedure is called.
  struct Unseen {
    bool Databases = false;
    bool Logins = false;

    /// Adds what the upper-cased statement may make in a text that is run.
    void Add(std::string_view upper) {
      Databases = Databases || upper.find("DATABASE") != std::string_view::npos;
      Logins = Logins || upper.find("LOGIN") != std::string_view::npos;
    }
  };
  Unseen unseen_;
  Unseen inProcedures_;
  std::string doubt_;
  DatabaseContents contents_;
};

}  // namespace talu
