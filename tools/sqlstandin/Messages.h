#pragma once

#include <cstdint>
#include <exception>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

namespace talu::standin {

/// An error or an informational message as the client sees it.
struct SqlMessage {
  std::int32_t Number = 0;
  /// The class: up to 10 is informational, from 11 an error, from 20 it ends the connection.
  std::uint8_t Severity = 0;
  std::uint8_t State = 1;
  std::string Text;
  /// The parts of `Text` that come from arguments: begin and end of each.
  std::vector<std::pair<std::size_t, std::size_t>> Arguments = {};
};

/// A statement failed. The client gets every message, in order.
class SqlFailure : public std::exception {
 public:
  /// `endsBatch`: the rest of the batch is not executed.
  explicit SqlFailure(SqlMessage message, bool endsBatch = false)
      : Messages{std::move(message)}, EndsBatch(endsBatch) {}

  SqlFailure(std::vector<SqlMessage> messages, bool endsBatch = false)
      : Messages(std::move(messages)), EndsBatch(endsBatch) {}

  const char* what() const noexcept override { return Messages.front().Text.c_str(); }

  std::vector<SqlMessage> Messages;
  bool EndsBatch;
  /// Where in the batch, in bytes, where that is not its statement's beginning.
  std::size_t At = 0;
};

/// A construct that this program does not know, though a real server may.
class NotKnown : public std::exception {
 public:
  explicit NotKnown(std::string construct) : Construct(std::move(construct)) {}
  const char* what() const noexcept override { return Construct.c_str(); }

  /// Without names and values: "MERGE", "SELECT with PIVOT".
  std::string Construct;
};

/// The client cancelled or left, or the server stops: what runs is abandoned.
class Cancelled : public std::exception {};

/// The number of this program's own messages; the real server leaves it to the user.
inline constexpr std::int32_t kOwnMessageNumber = 50000;

/// The messages, each with the real server's number, class and wording. Source: the public
/// reference "Database Engine events and errors", which prints the server's table sys.messages; the
/// states, which that table lacks, are as commonly reported.
namespace message {

/// A message with a "%" for each of its arguments, in order.
struct Pattern {
  std::int32_t Number;
  std::uint8_t Severity;
  std::uint8_t State;
  std::string_view Text;

  template <class... Arguments>
  SqlMessage operator()(const Arguments&... arguments) const {
    return Fill({ToText(arguments)...});
  }

 private:
  SqlMessage Fill(const std::vector<std::string>& arguments) const;

  template <class Argument>
  static std::string ToText(const Argument& argument) {
    if constexpr (std::is_arithmetic_v<Argument>)
      return std::to_string(argument);
    else
      return std::string(argument);
  }
};

// clang-format off
inline constexpr Pattern kOwn{kOwnMessageNumber, 16, 1, "sqlstandin: %"};
/// For what is taken note of where that is allowed.
inline constexpr Pattern kNotKnown{kOwnMessageNumber, 16, 1, "sqlstandin does not know % (line %); a real server may"};
inline constexpr Pattern kSyntaxNear{102, 15, 1, "Incorrect syntax near '%'."};
inline constexpr Pattern kSyntaxNearKeyword{156, 15, 1, "Incorrect syntax near the keyword '%'."};
inline constexpr Pattern kNotFirst{111, 15, 1, "'%' must be the first statement in a query batch."};
inline constexpr Pattern kUnclosedQuote{105, 15, 1, "Unclosed quotation mark after the character string '%'."};
inline constexpr Pattern kUnclosedComment{113, 15, 1, "Missing end comment mark '*/'."};
inline constexpr Pattern kIdentifierTooLong{103, 15, 4, "The identifier that starts with '%' is too long. Maximum length is 128."};
inline constexpr Pattern kTooDeep{191, 15, 1, "Some part of your SQL statement is nested too deeply. Rewrite the query or break it up into smaller queries."};
inline constexpr Pattern kUnknownSetOption{195, 15, 5, "'%' is not a recognized SET option."};
inline constexpr Pattern kUndeclaredVariable{137, 15, 2, "Must declare the scalar variable \"%\"."};
inline constexpr Pattern kUnknownType{2715, 16, 6, "Column, parameter, or variable #%: Cannot find data type %."};
inline constexpr Pattern kInvalidColumn{207, 16, 1, "Invalid column name '%'."};
inline constexpr Pattern kInvalidObject{208, 16, 1, "Invalid object name '%'."};
inline constexpr Pattern kAmbiguousColumn{209, 16, 1, "Ambiguous column name '%'."};
inline constexpr Pattern kDuplicateColumn{2705, 16, 4, "Column names in each table must be unique. Column name '%' is specified more than once."};
inline constexpr Pattern kColumnCount{213, 16, 1, "Column name or number of supplied values does not match table definition."};
inline constexpr Pattern kMoreColumnsThanValues{109, 15, 1, "There are more columns in the INSERT statement than values specified in the VALUES clause. The number of values in the VALUES clause must match the number of columns specified in the INSERT statement."};
inline constexpr Pattern kFewerColumnsThanValues{110, 15, 1, "There are fewer columns in the INSERT statement than values specified in the VALUES clause. The number of values in the VALUES clause must match the number of columns specified in the INSERT statement."};
inline constexpr Pattern kExplicitIdentity{544, 16, 1, "Cannot insert explicit value for identity column in table '%' when IDENTITY_INSERT is set to OFF."};
inline constexpr Pattern kNullNotAllowed{515, 16, 2, "Cannot insert the value NULL into column '%', table '%'; column does not allow nulls. % fails."};
inline constexpr Pattern kConflict{547, 16, 0, "The % statement conflicted with the % constraint. The conflict occurred in database \"%\"."};
inline constexpr Pattern kDuplicateKey{2627, 14, 1, "Violation of % constraint '%'. Cannot insert duplicate key in object '%'."};
inline constexpr Pattern kTruncated{8152, 16, 14, "String or binary data would be truncated."};
inline constexpr Pattern kConversionError{8114, 16, 5, "Error converting data type % to %."};
inline constexpr Pattern kObjectExists{2714, 16, 6, "There is already an object named '%' in the database."};
inline constexpr Pattern kCannotDrop{3701, 11, 5, "Cannot drop the % '%', because it does not exist or you do not have permission."};
inline constexpr Pattern kNoSuchObject{4902, 16, 1, "Cannot find the object \"%\" because it does not exist or you do not have permissions."};
inline constexpr Pattern kNotAConstraint{3728, 16, 1, "'%' is not a constraint."};
inline constexpr Pattern kBadReference{1767, 16, 0, "Foreign key '%' references invalid table '%'."};
inline constexpr Pattern kConstraintFailed{1750, 16, 0, "Could not create constraint or index. See previous errors."};
inline constexpr Pattern kNoSuchType{218, 16, 1, "Could not find the type '%'. Either it does not exist or you do not have the necessary permission."};
inline constexpr Pattern kTypeExists{219, 16, 1, "The type '%' already exists, or you do not have permission to create it."};
inline constexpr Pattern kNoSuchSchema{2760, 16, 1, "The specified schema name \"%\" either does not exist or you do not have permission to use it."};
inline constexpr Pattern kNoSuchProcedure{2812, 16, 62, "Could not find stored procedure '%'."};
inline constexpr Pattern kLockTimeout{1222, 16, 51, "Lock request time out period exceeded."};
inline constexpr Pattern kOutOfMemory{701, 17, 123, "There is insufficient system memory to run this query."};
inline constexpr Pattern kNoSuchDatabase{911, 16, 1, "Database '%' does not exist. Make sure that the name is entered correctly."};
inline constexpr Pattern kDatabaseOffline{942, 14, 4, "Database '%' cannot be opened because it is offline."};
inline constexpr Pattern kDatabaseInaccessible{945, 14, 2, "Database '%' cannot be opened due to inaccessible files or insufficient memory or disk space. See the SQL Server errorlog for details."};
inline constexpr Pattern kDatabaseExists{1801, 16, 3, "Database '%' already exists. Choose a different database name."};
inline constexpr Pattern kCreateDatabaseFailed{1802, 16, 4, "CREATE DATABASE failed. Some file names listed could not be created. Check related errors."};
inline constexpr Pattern kDatabaseInUse{3702, 16, 3, "Cannot drop database \"%\" because it is currently in use."};
inline constexpr Pattern kSystemDatabase{3708, 16, 4, "Cannot drop the database '%' because it is a system database."};
inline constexpr Pattern kCannotAlterDatabase{5011, 14, 5, "User does not have permission to alter database '%', the database does not exist, or the database is not in a state that allows access checks."};
inline constexpr Pattern kAlterDatabaseFailed{5069, 16, 1, "ALTER DATABASE statement failed."};
inline constexpr Pattern kAlterLockFailed{5061, 16, 1, "ALTER DATABASE failed because a lock could not be placed on database '%'. Try again later."};
inline constexpr Pattern kOptionNotAllowed{5058, 16, 5, "Option '%' cannot be set in database '%'."};
inline constexpr Pattern kNoDirectory{5133, 16, 1, "Directory lookup for the file \"%\" failed with the operating system error %."};
inline constexpr Pattern kCannotCreateFile{5123, 16, 1, "CREATE FILE encountered operating system error % while attempting to open or create the physical file '%'."};
inline constexpr Pattern kFileExists{5170, 16, 1, "Cannot create file '%' because it already exists. Change the file path or the file name, and retry the operation."};
inline constexpr Pattern kNoBackupDevice{3201, 16, 1, "Cannot open backup device '%'. Operating system error %."};
inline constexpr Pattern kBackupFailed{3013, 16, 1, "BACKUP DATABASE is terminating abnormally."};
inline constexpr Pattern kVerifyFailed{3013, 16, 1, "VERIFY DATABASE is terminating abnormally."};
inline constexpr Pattern kPercentProcessed{3211, 10, 1, "% percent processed."};
inline constexpr Pattern kPagesProcessed{4035, 10, 1, "Processed % pages for database '%', file '%' on file 1."};
inline constexpr Pattern kBackupSucceeded{3014, 10, 1, "BACKUP DATABASE successfully processed % pages in % seconds (% MB/sec)."};
inline constexpr Pattern kLoginExists{15025, 16, 2, "The server principal '%' already exists."};
inline constexpr Pattern kUserExists{15023, 16, 1, "User, group, or role '%' already exists in the current database."};
inline constexpr Pattern kNoSuchPrincipal{15151, 16, 1, "Cannot % the % '%', because it does not exist or you do not have permission."};
inline constexpr Pattern kNotALogin{15007, 16, 1, "'%' is not a valid login or you do not have permission."};
inline constexpr Pattern kLoginFailed{18456, 14, 1, "Login failed for user '%'."};
inline constexpr Pattern kUntrustedLogin{18452, 14, 1, "Login failed. The login is from an untrusted domain and cannot be used with Windows authentication."};
inline constexpr Pattern kCannotOpenDatabase{4060, 11, 1, "Cannot open database \"%\" requested by the login. The login failed."};
inline constexpr Pattern kNothingToCommit{3902, 16, 1, "The COMMIT TRANSACTION request has no corresponding BEGIN TRANSACTION."};
inline constexpr Pattern kNothingToRollBack{3903, 16, 1, "The ROLLBACK TRANSACTION request has no corresponding BEGIN TRANSACTION."};
inline constexpr Pattern kNotInTransaction{226, 16, 6, "% statement not allowed within multi-statement transaction."};
inline constexpr Pattern kDatabaseContext{5701, 0, 1, "Changed database context to '%'."};
inline constexpr Pattern kLanguageSetting{5703, 0, 1, "Changed language setting to %."};
// clang-format on

}  // namespace message
}  // namespace talu::standin
