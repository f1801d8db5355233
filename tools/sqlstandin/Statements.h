#pragma once

#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "Reader.h"

namespace talu::standin {

struct Statement;

/// A statement about what is in the catalogue, with names and little else.
struct CatalogueStatement {
  enum class Action { Use, Drop, CreateLogin, DropLogin, CreateUser, DropUser };
  Action What = Action::Use;
  std::vector<std::string> Names;
  /// A login's password, none for one of Windows; a user's login, empty: WITHOUT LOGIN.
  std::optional<std::string> Value = {};
  bool IfExists = false;
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
  std::variant<NoEffect, CatalogueStatement, CreateDatabase, AlterDatabase, BackupDatabase,
               VerifyBackup, SetOption, TransactionStatement, PrintText, RaiseError,
               AssignVariables, CallProcedure, KeptStatement, DataStatement, UnknownStatement,
               Block, IfStatement>
      What;
};

}  // namespace talu::standin
