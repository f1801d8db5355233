#include "Session.h"

#include <algorithm>
#include <atomic>
#include <type_traits>
#include <variant>

#include "Text.h"

namespace talu::standin {

Session::Session(Catalogue& catalogue, int number, const std::string& login,
                 const std::string& database, CancelTest isCancelled)
    : catalogue_(catalogue),
      number_(number),
      firstDatabase_(database),
      isCancelled_(std::move(isCancelled)) {
  facts_.Server = &catalogue;
  facts_.Login = login;
  facts_.Current = catalogue.Use(number, database);
}

std::optional<SqlMessage> Session::Run(std::string_view batch, ReplyWriter& reply) {
  batch_ = batch;
  reply_ = &reply;
  firstError_.reset();
  hasDone_ = false;
  countedTo_ = 0;
  line_ = 1;
  try {
    for (const Statement& statement : ParseStatements(batch)) {
      if (!Execute(statement)) break;
    }
  } catch (const SqlFailure& failure) {
    Report(failure, 0);
  }
  if (!hasDone_) Done();
  return std::move(firstError_);
}

/// Returns false when the rest of the batch is not to be executed.
bool Session::Execute(const Statement& statement) {
  if (isCancelled_()) throw Cancelled();
  if (const auto* block = std::get_if<Block>(&statement.What)) {
    return std::all_of(block->Statements.begin(), block->Statements.end(),
                       [this](const Statement& each) { return Execute(each); });
  }
  if (const auto* choice = std::get_if<IfStatement>(&statement.What)) {
    bool isTrue = false;
    try {
      isTrue = IsTrue(choice->Condition);
    } catch (const SqlFailure& failure) {
      return Report(failure, statement.At);
    }
    const std::size_t branch = isTrue ? 0 : 1;
    return branch >= choice->Branches.size() || Execute(choice->Branches[branch]);
  }
  return ExecuteLeaf(statement);
}

bool Session::ExecuteLeaf(const Statement& statement) {
  try {
    std::visit(
        [this](const auto& what) {
          using What = std::decay_t<decltype(what)>;
          constexpr bool kIsCompound =
              std::is_same_v<What, Block> || std::is_same_v<What, IfStatement>;
          if constexpr (!kIsCompound) Do(what);
        },
        statement.What);
    lastError_ = 0;
    return true;
  } catch (const SqlFailure& failure) {
    return Report(failure, statement.At);
  } catch (const Cancelled&) {
    throw;
  } catch (const std::exception& error) {
    return Report(SqlFailure(message::Own(error.what())), statement.At);
  }
}

bool Session::Report(const SqlFailure& failure, std::size_t at) {
  const std::size_t line = LineOf(at);
  for (const SqlMessage& message : failure.Messages) {
    reply_->Tell(message, line);
    if (!firstError_) firstError_ = message;
  }
  lastError_ = failure.Messages.front().Number;
  rowCount_ = 0;
  reply_->Done(DoneCommand::None, {}, true);
  hasDone_ = true;
  return !failure.EndsBatch;
}

/// The line of a byte of the batch. Statements come in order, so the batch is counted only once.
std::size_t Session::LineOf(std::size_t at) {
  if (at < countedTo_) return line_;
  line_ +=
      static_cast<std::size_t>(std::count(batch_.begin() + static_cast<std::ptrdiff_t>(countedTo_),
                                          batch_.begin() + static_cast<std::ptrdiff_t>(at), '\n'));
  countedTo_ = at;
  return line_;
}

void Session::Done(DoneCommand command, std::optional<std::uint64_t> rows) {
  if (noCount_ && command != DoneCommand::Select) rows.reset();
  reply_->Done(command, rows);
  hasDone_ = true;
}

void Session::BeginTransaction(ReplyWriter& reply) {
  if (transactions_++ > 0) return;
  static std::atomic<std::uint64_t> counter{0};
  transactionId_ = ++counter;
  reply.TransactionBegan(transactionId_);
}

void Session::EndTransaction(ReplyWriter& reply, bool commits) {
  if (transactions_ == 0) {
    throw SqlFailure(commits ? message::NothingToCommit() : message::NothingToRollBack());
  }
  if (commits && --transactions_ > 0) return;
  transactions_ = 0;
  for (const auto& [id, database] : open_) {
    if (database->InTransaction()) database->Execute(commits ? "COMMIT" : "ROLLBACK");
  }
  CloseOthers();
  reply.TransactionEnded(transactionId_, commits);
}

void Session::Reset() {
  transactions_ = 0;
  open_.clear();  // rolls back
  noCount_ = false;
  identityInsert_.clear();
  SwitchTo(firstDatabase_);
}

void Session::SwitchTo(const std::string& name) {
  facts_.Current = catalogue_.Use(number_, name);
  CloseOthers();
}

/// A session keeps only its current database's files open, and those of an open transaction.
void Session::CloseOthers() {
  if (transactions_ > 0) return;
  std::erase_if(open_, [this](const auto& each) { return each.first != facts_.Current.Id; });
}

void Session::Do(const SetOption& statement) {
  if (statement.What == SetOption::Option::NoCount) noCount_ = statement.On;
  if (statement.What == SetOption::Option::IdentityInsert) {
    identityInsert_ = statement.On ? statement.Table : std::string();
  }
  Done();
}

void Session::Do(const TransactionStatement& statement) {
  if (statement.What == TransactionStatement::Action::Begin) {
    BeginTransaction(*reply_);
  } else {
    EndTransaction(*reply_, statement.What == TransactionStatement::Action::Commit);
  }
  Done();
}

void Session::Do(const CallProcedure& statement) {
  // Permissions are not stored, so a member of a role is like any other user.
  if (!SameWord(statement.Name, "sp_addrolemember") &&
      !SameWord(statement.Name, "sp_addsrvrolemember")) {
    throw SqlFailure(message::NoSuchProcedure(statement.Name));
  }
  Done();
}

void Session::Do(const NoEffect& /*statement*/) {
  Done();
}

std::string Session::PrefixOf(const std::string& database) {
  if (SameName(database, facts_.Current.Name)) return {};
  const DatabaseEntry entry = catalogue_.Find(database);
  const std::string schema = "database " + std::to_string(entry.Id);
  Current().Attach(entry.File, schema);
  return QuoteName(schema) + ".";
}

std::optional<std::string> Session::Variable(std::string_view name) {
  if (SameWord(name, "@@ROWCOUNT")) return std::to_string(rowCount_);
  if (SameWord(name, "@@ERROR")) return std::to_string(lastError_);
  if (SameWord(name, "@@TRANCOUNT")) return std::to_string(transactions_);
  if (SameWord(name, "@@SPID")) return std::to_string(number_);
  if (SameWord(name, "@@IDENTITY")) return "last_insert_rowid()";
  if (SameWord(name, "@@SERVERNAME")) return "'SQLSTANDIN'";
  if (SameWord(name, "@@VERSION")) return "'sqlstandin 10.50.1600, a stand-in over SQLite'";
  return std::nullopt;
}

std::vector<TableColumn> Session::Columns(const std::string& prefix, const std::string& table) {
  std::string schema = "main";
  if (!prefix.empty()) schema = prefix.substr(1, prefix.size() - 3);  // "name".
  return Current().Columns(schema, table);
}

bool Session::AllowsIdentityInsert(const std::string& table) {
  return SameName(identityInsert_, table);
}

void Session::NeedSystemViews() {
  Current().AddSystemViews(facts_.Current.Id);
}

}  // namespace talu::standin
