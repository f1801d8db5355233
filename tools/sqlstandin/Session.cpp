#include "Session.h"

#include <algorithm>
#include <atomic>
#include <set>
#include <type_traits>
#include <utility>
#include <variant>

#include "Parser.h"
#include "Text.h"
#include "runtime/TextFunctions.h"

namespace talu::standin {

Session::Session(Catalogue& catalogue, int number, const std::string& login,
                 const std::string& database, CancelTest isCancelled, bool isStrict)
    : catalogue_(catalogue),
      number_(number),
      firstDatabase_(database),
      isCancelled_(std::move(isCancelled)),
      isStrict_(isStrict) {
  facts_.Server = &catalogue;
  facts_.Login = login;
  facts_.Current = catalogue.Use(number, database);
}

Outcome Session::Run(std::string_view batch, ReplyWriter& reply) {
  reply_ = &reply;
  outcome_ = {};
  variables_.clear();
  hasDone_ = false;
  RunText(batch);
  if (!hasDone_) Done();
  return std::move(outcome_);
}

/// A batch, or the text of an EXEC within one.
void Session::RunText(std::string_view text) {
  batch_ = text;
  countedTo_ = 0;
  line_ = 1;
  schemas_.reset();
  try {
    // All of it is read before anything is carried out, and nothing of that kept: a batch may have
    // a million statements.
    Parser check(text);
    while (const auto statement = check.NextStatement()) CheckUses(*statement);
    Parser parser(text);
    for (auto statement = parser.NextStatement(); statement && Execute(*statement);) {
      statement = parser.NextStatement();
    }
    EndRows();
  } catch (const SqlFailure& failure) {
    Report(failure, failure.At);
  } catch (...) {
    EndRows();
    throw;
  }
}

/// The real server looks for the databases of USE before it carries anything out.
void Session::CheckUses(const Statement& statement) {
  if (const auto* use = std::get_if<CatalogueStatement>(&statement.What)) {
    if (use->What == CatalogueStatement::Action::Use && !catalogue_.Exists(use->Names.front())) {
      SqlFailure failure(message::kNoSuchDatabase(use->Names.front()), true);
      failure.At = statement.Text.Begin;
      throw failure;
    }
  } else if (const auto* block = std::get_if<Block>(&statement.What)) {
    for (const Statement& each : block->Statements) CheckUses(each);
  } else if (const auto* choice = std::get_if<IfStatement>(&statement.What)) {
    for (const Statement& each : choice->Branches) CheckUses(each);
  }
}

/// Returns false when the rest of the batch is not to be executed.
bool Session::Execute(const Statement& statement) {
  if (isCancelled_()) throw Cancelled();
  if (const auto* block = std::get_if<Block>(&statement.What)) {
    return std::all_of(block->Statements.begin(), block->Statements.end(),
                       [this](const Statement& each) { return Execute(each); });
  }
  return ExecuteLeaf(statement);
}

bool Session::ExecuteLeaf(const Statement& statement) {
  const Statement* outer = std::exchange(statement_, &statement);
  goesOn_ = true;
  isApproximate_ = false;
  try {
    if (!BeginRow(statement)) EndRows();
    std::visit(
        [this](const auto& what) {
          if constexpr (!std::is_same_v<std::decay_t<decltype(what)>, Block>) Do(what);
        },
        statement.What);
    if (!std::holds_alternative<IfStatement>(statement.What)) lastError_ = 0;
  } catch (const SqlFailure& failure) {
    goesOn_ = IsUncertain(failure, statement)
                  ? Note(HeadOf(statement) + " on what is only kept or noted", statement)
                  : Report(failure, statement.Text.Begin);
  } catch (const NotKnown& unknown) {
    goesOn_ = Note(unknown.Construct.empty() ? HeadOf(statement)
                                             : HeadOf(statement) + " with " + unknown.Construct,
                   statement);
  } catch (const Cancelled&) {
    throw;
  } catch (const std::exception& error) {
    goesOn_ = Report(SqlFailure(message::kOwn(error.what())), statement.Text.Begin);
  }
  statement_ = outer;
  return goesOn_;
}

/// Whether the statement inserts a few rows. Many of them, one after another, are one transaction:
/// one each would cost ten times as much. It is not left open for long.
bool Session::BeginRow(const Statement& statement) {
  constexpr std::size_t kShort = 2000;  // bytes
  constexpr int kMost = 1000;
  const auto* data = std::get_if<DataStatement>(&statement.What);
  const std::string_view text =
      batch_.substr(statement.Text.Begin, statement.Text.End - statement.Text.Begin);
  if (data == nullptr || data->What != DataStatement::Verb::Insert || text.size() > kShort ||
      ContainsUpper(text, "SELECT")) {
    return false;
  }
  if (rows_ >= kMost) EndRows();
  if (transactions_ == 0 && rows_++ == 0) Current().Execute("BEGIN IMMEDIATE");
  return true;
}

void Session::EndRows() {
  columns_.clear();
  if (std::exchange(rows_, 0) > 0 && Current().InTransaction()) Current().Execute("COMMIT");
}

void Session::Do(const IfStatement& statement) {
  const std::size_t branch = IsTrue(statement.Condition) ? 0 : 1;
  if (branch < statement.Branches.size()) goesOn_ = Execute(statement.Branches[branch]);
}

bool Session::Report(const SqlFailure& failure, std::size_t at) {
  const std::size_t line = LineOf(at);
  if (!outcome_.Error) {
    outcome_.Error = failure.Messages.front();
    outcome_.Line = line;
  }
  for (const SqlMessage& message : failure.Messages) reply_->Tell(message, line);
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
    throw SqlFailure(commits ? message::kNothingToCommit() : message::kNothingToRollBack());
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
  schemas_.reset();
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
  if (name.starts_with("@@")) throw NotKnown(UCase(name));
  const auto variable = variables_.find(FoldName(name));
  if (variable == variables_.end()) return std::nullopt;
  if (!variable->second) throw NotKnown("a variable");
  return variable->second;
}

std::vector<TableColumn> Session::Columns(const std::string& prefix, const std::string& table) {
  std::string schema = "main";
  if (!prefix.empty()) schema = prefix.substr(1, prefix.size() - 3);  // "name".
  const auto [found, isNew] = columns_.try_emplace(prefix + table);
  if (isNew) found->second = Current().Columns(schema, table);
  return found->second;
}

bool Session::AllowsIdentityInsert(const std::string& table) {
  return SameName(identityInsert_, table);
}

std::string Session::DefinitionOf(const std::string& prefix, const std::string& table) {
  SqliteStatement row(Current(),
                      "SELECT sql FROM " + (prefix.empty() ? "main." : prefix) +
                          "sqlite_schema WHERE type = 'table' AND name = " + QuoteText(table) +
                          " COLLATE NOCASE",
                      "");
  return row.Step() ? std::string(row.Text(0)) : std::string();
}

bool Session::IsSchema(std::string_view name) {
  if (!schemas_) schemas_ = KeptObjects(Current()).Names("SCHEMA");
  if (!schemas_->contains(FoldName(name))) return false;
  isApproximate_ = true;
  return true;
}

bool Session::HasType(const std::string& name) {
  return KeptObjects(Current()).Has("TYPE", name);
}

}  // namespace talu::standin
