#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace talu::standin {

/// A part of the batch, in bytes.
struct Range {
  std::size_t Begin = 0;
  std::size_t End = 0;
};

struct Statement;

struct UseDatabase {
  std::string Name;
};

struct CreateDatabase {
  std::string Name;
  /// File paths as in the statement; the first is the primary file. Empty: the server chooses.
  std::vector<std::string> DataFiles;
  std::vector<std::string> LogFiles;
};

struct AlterDatabase {
  enum class Action { None, Offline, Online, SingleUser };
  std::string Name;
  Action What = Action::None;
  /// WITH ROLLBACK …: ends the other sessions' use.
  bool EndsOthers = false;
};

struct DropDatabase {
  std::vector<std::string> Names;
  bool IfExists = false;
};

struct BackupDatabase {
  std::string Name;
  std::string Path;
  /// INIT or FORMAT: overwrites an existing backup.
  bool Overwrites = false;
  /// A progress message every so many percent; 0 for none.
  int Stats = 0;
};

struct CreateLogin {
  std::string Name;
  std::string Password;
  /// FROM WINDOWS: exists, but nobody can log in with it here.
  bool IsWindows = false;
};

struct DropLogin {
  std::string Name;
};

struct CreateUser {
  std::string Name;
  /// Empty: WITHOUT LOGIN.
  std::string Login;
};

struct DropUser {
  std::string Name;
};

struct SetOption {
  enum class Option { Other, NoCount, IdentityInsert };
  Option What = Option::Other;
  std::string Table;
  bool On = false;
};

struct TransactionStatement {
  enum class Action { Begin, Commit, Rollback };
  Action What = Action::Begin;
};

struct PrintText {
  Range Expression;
};

struct CallProcedure {
  std::string Name;
};

/// Accepted, changes nothing: GRANT, DENY, REVOKE.
struct NoEffect {};

/// What SQLite executes, after translation into its dialect.
struct DataStatement {
  enum class Verb {
    Select,
    Insert,
    Update,
    Delete,
    CreateTable,
    AlterTable,
    Truncate,
    CreateIndex,
    DropIndex,
    CreateView,
    DropTable,
    DropView,
  };
  Verb What = Verb::Select;
  Range Text;
};

struct Block {
  std::vector<Statement> Statements;
};

struct IfStatement {
  Range Condition;
  /// One statement, or two with ELSE.
  std::vector<Statement> Branches;
};

struct Statement {
  /// Where it begins in the batch, in bytes.
  std::size_t At = 0;
  std::variant<NoEffect, UseDatabase, CreateDatabase, AlterDatabase, DropDatabase, BackupDatabase,
               CreateLogin, DropLogin, CreateUser, DropUser, SetOption, TransactionStatement,
               PrintText, CallProcedure, DataStatement, Block, IfStatement>
      What;
};

/// Splits a batch into statements, in time linear in its length. Raises SqlFailure, before anything
/// is executed, for an unknown or malformed statement (102 near the word).
std::vector<Statement> ParseStatements(std::string_view batch);

}  // namespace talu::standin
