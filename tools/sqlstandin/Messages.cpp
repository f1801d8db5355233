#include "Messages.h"

#include <array>
#include <cstdio>
#include <initializer_list>

#include "Text.h"

namespace talu::standin::message {
namespace {

/// The message with the arguments for the "%" marks of `pattern`, in order.
SqlMessage Error(std::int32_t number, std::uint8_t severity, std::uint8_t state,
                 std::string_view pattern, std::initializer_list<std::string_view> arguments = {}) {
  SqlMessage message{number, severity, state, {}};
  const auto* next = arguments.begin();
  for (const char c : pattern) {
    if (c == '%' && next != arguments.end()) {
      const std::size_t begin = message.Text.size();
      message.Text += *next++;
      message.Arguments.emplace_back(begin, message.Text.size());
    } else {
      message.Text += c;
    }
  }
  return message;
}

/// How much of a long word the server quotes.
constexpr std::size_t kQuotedUnits = 128;

}  // namespace

SqlMessage Own(std::string_view text) {
  return Error(kOwnMessageNumber, 16, 1, "sqlstandin: %", {text});
}
SqlMessage SyntaxNear(std::string_view word) {
  return Error(102, 15, 1, "Incorrect syntax near '%'.", {FirstUnits(word, kQuotedUnits)});
}
SqlMessage UnclosedQuote(std::string_view text) {
  return Error(105, 15, 1, "Unclosed quotation mark after the character string '%'.",
               {FirstUnits(text, kQuotedUnits)});
}
SqlMessage UnclosedComment() {
  return Error(113, 15, 1, "Missing end comment mark '*/'.");
}
SqlMessage IdentifierTooLong(std::string_view name) {
  return Error(103, 15, 4,
               "The identifier that starts with '%' is too long. Maximum length is 128.",
               {FirstUnits(name, kQuotedUnits)});
}
SqlMessage TooDeep() {
  return Error(
      191, 15, 1,
      "Some part of your SQL statement is nested too deeply. Rewrite the query or break it "
      "up into smaller queries.");
}
SqlMessage UndeclaredVariable(std::string_view name) {
  return Error(137, 15, 2, "Must declare the scalar variable \"%\".", {name});
}
SqlMessage UnknownType(std::size_t column, std::string_view type) {
  return Error(2715, 16, 6, "Column, parameter, or variable #%: Cannot find data type %.",
               {std::to_string(column), type});
}
SqlMessage InvalidColumn(std::string_view name) {
  return Error(207, 16, 1, "Invalid column name '%'.", {name});
}
SqlMessage InvalidObject(std::string_view name) {
  return Error(208, 16, 1, "Invalid object name '%'.", {name});
}
SqlMessage AmbiguousColumn(std::string_view name) {
  return Error(209, 16, 1, "Ambiguous column name '%'.", {name});
}
SqlMessage DuplicateColumn(std::string_view name) {
  return Error(2705, 16, 4,
               "Column names in each table must be unique. Column name '%' is specified more than "
               "once.",
               {name});
}
SqlMessage UnknownFunction(std::string_view name) {
  return Error(195, 15, 10, "'%' is not a recognized built-in function name.", {name});
}
SqlMessage ColumnCount() {
  return Error(213, 16, 1,
               "Column name or number of supplied values does not match table definition.");
}
SqlMessage MoreColumnsThanValues() {
  return Error(109, 15, 1,
               "There are more columns in the INSERT statement than values specified in the VALUES "
               "clause. The number of values in the VALUES clause must match the number of columns "
               "specified in the INSERT statement.");
}
SqlMessage FewerColumnsThanValues() {
  return Error(
      110, 15, 1,
      "There are fewer columns in the INSERT statement than values specified in the VALUES "
      "clause. The number of values in the VALUES clause must match the number of columns "
      "specified in the INSERT statement.");
}
SqlMessage ExplicitIdentity(std::string_view table) {
  return Error(544, 16, 1,
               "Cannot insert explicit value for identity column in table '%' when IDENTITY_INSERT "
               "is set to OFF.",
               {table});
}
SqlMessage NullNotAllowed(std::string_view column, std::string_view table, std::string_view verb) {
  return Error(515, 16, 2,
               "Cannot insert the value NULL into column '%', table '%'; column does not allow "
               "nulls. % fails.",
               {column, table, verb});
}
SqlMessage Conflict(std::string_view verb, std::string_view constraint, std::string_view database) {
  return Error(
      547, 16, 0,
      "The % statement conflicted with the % constraint. The conflict occurred in database "
      "\"%\".",
      {verb, constraint, database});
}
SqlMessage DuplicateKey(std::string_view kind, std::string_view constraint,
                        std::string_view table) {
  return Error(2627, 14, 1,
               "Violation of % constraint '%'. Cannot insert duplicate key in object '%'.",
               {kind, constraint, table});
}
SqlMessage Truncated() {
  return Error(8152, 16, 14, "String or binary data would be truncated.");
}
SqlMessage ConversionError(std::string_view from, std::string_view to) {
  return Error(8114, 16, 5, "Error converting data type % to %.", {from, to});
}
SqlMessage ObjectExists(std::string_view name) {
  return Error(2714, 16, 6, "There is already an object named '%' in the database.", {name});
}
SqlMessage CannotDrop(std::string_view kind, std::string_view name) {
  return Error(3701, 11, 5,
               "Cannot drop the % '%', because it does not exist or you do not have permission.",
               {kind, name});
}
SqlMessage NoSuchProcedure(std::string_view name) {
  return Error(2812, 16, 62, "Could not find stored procedure '%'.", {name});
}
SqlMessage LockTimeout() {
  return Error(1222, 16, 51, "Lock request time out period exceeded.");
}
SqlMessage OutOfMemory() {
  return Error(701, 17, 123, "There is insufficient system memory to run this query.");
}

SqlMessage NoSuchDatabase(std::string_view name) {
  return Error(911, 16, 1,
               "Database '%' does not exist. Make sure that the name is entered correctly.",
               {name});
}
SqlMessage DatabaseOffline(std::string_view name) {
  return Error(942, 14, 4, "Database '%' cannot be opened because it is offline.", {name});
}
SqlMessage DatabaseInaccessible(std::string_view name) {
  return Error(945, 14, 2,
               "Database '%' cannot be opened due to inaccessible files or insufficient memory or "
               "disk space. See the SQL Server errorlog for details.",
               {name});
}
SqlMessage DatabaseExists(std::string_view name) {
  return Error(1801, 16, 3, "Database '%' already exists. Choose a different database name.",
               {name});
}
SqlMessage CreateDatabaseFailed() {
  return Error(1802, 16, 4,
               "CREATE DATABASE failed. Some file names listed could not be created. Check related "
               "errors.");
}
SqlMessage DatabaseInUse(std::string_view name) {
  return Error(3702, 16, 3, "Cannot drop database \"%\" because it is currently in use.", {name});
}
SqlMessage SystemDatabase(std::string_view name) {
  return Error(3708, 16, 4, "Cannot drop the database '%' because it is a system database.",
               {name});
}
SqlMessage CannotAlterDatabase(std::string_view name) {
  return Error(5011, 14, 5,
               "User does not have permission to alter database '%', the database does not exist, "
               "or the database is not in a state that allows access checks.",
               {name});
}
SqlMessage AlterDatabaseFailed() {
  return Error(5069, 16, 1, "ALTER DATABASE statement failed.");
}
SqlMessage AlterLockFailed(std::string_view name) {
  return Error(
      5061, 16, 1,
      "ALTER DATABASE failed because a lock could not be placed on database '%'. Try again "
      "later.",
      {name});
}
SqlMessage OptionNotAllowed(std::string_view option, std::string_view name) {
  return Error(5058, 16, 5, "Option '%' cannot be set in database '%'.", {option, name});
}
SqlMessage NoDirectory(std::string_view file, std::string_view system) {
  return Error(5133, 16, 1,
               "Directory lookup for the file \"%\" failed with the operating system error %.",
               {file, system});
}
SqlMessage CannotCreateFile(std::string_view file, std::string_view system) {
  return Error(
      5123, 16, 1,
      "CREATE FILE encountered operating system error % while attempting to open or create "
      "the physical file '%'.",
      {system, file});
}
SqlMessage FileExists(std::string_view file) {
  return Error(5170, 16, 1,
               "Cannot create file '%' because it already exists. Change the file path or the file "
               "name, and retry the operation.",
               {file});
}
SqlMessage NoBackupDevice(std::string_view file, std::string_view system) {
  return Error(3201, 16, 1, "Cannot open backup device '%'. Operating system error %.",
               {file, system});
}
SqlMessage BackupFailed() {
  return Error(3013, 16, 1, "BACKUP DATABASE is terminating abnormally.");
}
SqlMessage PercentProcessed(int percent) {
  return Error(3211, 10, 1, "% percent processed.", {std::to_string(percent)});
}
SqlMessage PagesProcessed(std::int64_t pages, std::string_view database) {
  return Error(4035, 10, 1, "Processed % pages for database '%', file '%' on file 1.",
               {std::to_string(pages), database, database});
}
SqlMessage BackupSucceeded(std::int64_t pages, std::int64_t milliseconds) {
  const double seconds = static_cast<double>(milliseconds) / 1000;
  const double megabytes = static_cast<double>(pages) * 4096 / (1024 * 1024);
  std::array<char, 64> figures{};
  std::snprintf(figures.data(), figures.size(), "%.3f seconds (%.3f MB/sec).", seconds,
                milliseconds == 0 ? 0.0 : megabytes / seconds);
  return Error(3014, 10, 1, "BACKUP DATABASE successfully processed % pages in %",
               {std::to_string(pages), figures.data()});
}

SqlMessage LoginExists(std::string_view name) {
  return Error(15025, 16, 2, "The server principal '%' already exists.", {name});
}
SqlMessage UserExists(std::string_view name) {
  return Error(15023, 16, 1, "User, group, or role '%' already exists in the current database.",
               {name});
}
SqlMessage NoSuchPrincipal(std::string_view verb, std::string_view kind, std::string_view name) {
  return Error(15151, 16, 1,
               "Cannot % the % '%', because it does not exist or you do not have permission.",
               {verb, kind, name});
}
SqlMessage NotALogin(std::string_view name) {
  return Error(15007, 16, 1, "'%' is not a valid login or you do not have permission.", {name});
}
SqlMessage LoginFailed(std::string_view user) {
  return Error(18456, 14, 1, "Login failed for user '%'.", {user});
}
SqlMessage UntrustedLogin() {
  return Error(
      18452, 14, 1,
      "Login failed. The login is from an untrusted domain and cannot be used with Windows "
      "authentication.");
}
SqlMessage CannotOpenDatabase(std::string_view name) {
  return Error(4060, 11, 1, "Cannot open database \"%\" requested by the login. The login failed.",
               {name});
}

SqlMessage NothingToCommit() {
  return Error(3902, 16, 1,
               "The COMMIT TRANSACTION request has no corresponding BEGIN TRANSACTION.");
}
SqlMessage NothingToRollBack() {
  return Error(3903, 16, 1,
               "The ROLLBACK TRANSACTION request has no corresponding BEGIN TRANSACTION.");
}
SqlMessage NotInTransaction(std::string_view statement) {
  return Error(226, 16, 6, "% statement not allowed within multi-statement transaction.",
               {statement});
}

SqlMessage DatabaseContext(std::string_view name, std::uint8_t state) {
  return Error(5701, 0, state, "Changed database context to '%'.", {name});
}
SqlMessage LanguageSetting(std::string_view language) {
  return Error(5703, 0, 1, "Changed language setting to %.", {language});
}

}  // namespace talu::standin::message
