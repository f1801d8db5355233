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
  /// Empty: the current one.
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

/// RESTORE VERIFYONLY.
struct VerifyBackup {
  std::string Path;
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
  bool IfExists = false;
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

/// RAISERROR with a literal text and literal numbers.
struct RaiseError {
  std::string Text;
  int Severity = 0;
};

/// DECLARE @a … = …, SET @a = …: variables and what they become.
struct AssignVariables {
  struct Assignment {
    std::string Name;
    /// Empty where there is none.
    Range Value;
  };
  std::vector<Assignment> All;
};

struct CallProcedure {
  /// Empty: EXEC ('text').
  std::string Name;
  /// Its arguments that are literal texts, as far as no other stands before them.
  std::vector<std::string> Texts;
  /// Whether all of them are.
  bool HasOnlyTexts = true;
};

/// Accepted, changes nothing: CHECKPOINT, options of every kind.
struct NoEffect {};

/// Of what SQLite has no counterpart for, name and text are kept.
struct KeptStatement {
  enum class Action { Create, Alter, CreateOrAlter, Drop };
  Action What = Action::Create;
  /// "PROCEDURE", "TYPE", "GRANT"; what has no name can only be created.
  std::string Kind;
  /// As DataName gives them.
  std::vector<std::string> Names;
  bool IfExists = false;
};

/// What is only taken note of.
struct UnknownStatement {
  std::string Construct;
};

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
    DropTable,
  };
  Verb What = Verb::Select;
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
  /// Without the blanks and comments around it.
  Range Text;
  std::variant<NoEffect, UseDatabase, CreateDatabase, AlterDatabase, DropDatabase, BackupDatabase,
               VerifyBackup, CreateLogin, DropLogin, CreateUser, DropUser, SetOption,
               TransactionStatement, PrintText, RaiseError, AssignVariables, CallProcedure,
               KeptStatement, DataStatement, UnknownStatement, Block, IfStatement>
      What;
};

/// The name of a table, or of whatever else, in SQLite: there is no schema before those of dbo.
std::string DataName(const std::string& schema, const std::string& name);

}  // namespace talu::standin
