#pragma once

#include <cstdint>
#include <exception>
#include <string>
#include <string_view>
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
};

/// The client cancelled or left, or the server stops: what runs is abandoned.
class Cancelled : public std::exception {};

/// The number of this program's own messages; the real server leaves it to the user.
inline constexpr std::int32_t kOwnMessageNumber = 50000;

/// The messages, each with the real server's number, class and wording. Source: the public
/// reference "Database Engine events and errors", which prints the server's table sys.messages; the
/// states, which that table lacks, are as commonly reported.
namespace message {

SqlMessage Own(std::string_view text);
SqlMessage SyntaxNear(std::string_view word);
SqlMessage UnclosedQuote(std::string_view text);
SqlMessage UnclosedComment();
SqlMessage IdentifierTooLong(std::string_view name);
SqlMessage TooDeep();
SqlMessage UndeclaredVariable(std::string_view name);
SqlMessage UnknownType(std::size_t column, std::string_view type);
SqlMessage InvalidColumn(std::string_view name);
SqlMessage InvalidObject(std::string_view name);
SqlMessage AmbiguousColumn(std::string_view name);
SqlMessage DuplicateColumn(std::string_view name);
SqlMessage UnknownFunction(std::string_view name);
SqlMessage ColumnCount();
SqlMessage MoreColumnsThanValues();
SqlMessage FewerColumnsThanValues();
SqlMessage ExplicitIdentity(std::string_view table);
SqlMessage NullNotAllowed(std::string_view column, std::string_view table, std::string_view verb);
SqlMessage Conflict(std::string_view verb, std::string_view constraint, std::string_view database);
SqlMessage DuplicateKey(std::string_view kind, std::string_view constraint, std::string_view table);
SqlMessage Truncated();
SqlMessage ConversionError(std::string_view from, std::string_view to);
SqlMessage ObjectExists(std::string_view name);
SqlMessage CannotDrop(std::string_view kind, std::string_view name);
SqlMessage NoSuchProcedure(std::string_view name);
SqlMessage LockTimeout();
SqlMessage OutOfMemory();

SqlMessage NoSuchDatabase(std::string_view name);
SqlMessage DatabaseOffline(std::string_view name);
SqlMessage DatabaseInaccessible(std::string_view name);
SqlMessage DatabaseExists(std::string_view name);
SqlMessage CreateDatabaseFailed();
SqlMessage DatabaseInUse(std::string_view name);
SqlMessage SystemDatabase(std::string_view name);
SqlMessage CannotAlterDatabase(std::string_view name);
SqlMessage AlterDatabaseFailed();
SqlMessage AlterLockFailed(std::string_view name);
SqlMessage OptionNotAllowed(std::string_view option, std::string_view name);
SqlMessage NoDirectory(std::string_view file, std::string_view system);
SqlMessage CannotCreateFile(std::string_view file, std::string_view system);
SqlMessage FileExists(std::string_view file);
SqlMessage NoBackupDevice(std::string_view file, std::string_view system);
SqlMessage BackupFailed();
SqlMessage PercentProcessed(int percent);
SqlMessage PagesProcessed(std::int64_t pages, std::string_view database);
SqlMessage BackupSucceeded(std::int64_t pages, std::int64_t milliseconds);

SqlMessage LoginExists(std::string_view name);
SqlMessage UserExists(std::string_view name);
SqlMessage NoSuchPrincipal(std::string_view verb, std::string_view kind, std::string_view name);
SqlMessage NotALogin(std::string_view name);
SqlMessage LoginFailed(std::string_view user);
SqlMessage UntrustedLogin();
SqlMessage CannotOpenDatabase(std::string_view name);

SqlMessage NothingToCommit();
SqlMessage NothingToRollBack();
SqlMessage NotInTransaction(std::string_view statement);

SqlMessage DatabaseContext(std::string_view name, std::uint8_t state);
SqlMessage LanguageSetting(std::string_view language);

}  // namespace message
}  // namespace talu::standin
