#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Catalogue.h"
#include "Reply.h"
#include "Rewriter.h"
#include "SqliteDatabase.h"
#include "Statements.h"
#include "SystemViews.h"

namespace talu::standin {

/// One client's session after its login: its current database, transaction and options. Executes
/// batches. Used by one thread.
class Session : private RewriteEnvironment {
 public:
  /// `isCancelled` is called while statements run. Raises SqlFailure when the database cannot be
  /// used.
  Session(Catalogue& catalogue, int number, const std::string& login, const std::string& database,
          CancelTest isCancelled);

  /// Executes a batch and writes its answer, all but the end mark. Returns the first error, for the
  /// journal. Raises Cancelled.
  std::optional<SqlMessage> Run(std::string_view batch, ReplyWriter& reply);

  // What a client may request with separate messages.
  void BeginTransaction(ReplyWriter& reply);
  void EndTransaction(ReplyWriter& reply, bool commits);
  /// Restores the state after the login.
  void Reset();

  const std::string& DatabaseName() const { return facts_.Current.Name; }

 private:
  bool Execute(const Statement& statement);
  bool Report(const SqlFailure& failure, std::size_t at);
  std::size_t LineOf(std::size_t at);

  bool ExecuteLeaf(const Statement& statement);
  void Do(const UseDatabase& statement);
  void Do(const CreateDatabase& statement);
  void Do(const AlterDatabase& statement);
  void Do(const DropDatabase& statement);
  void Do(const BackupDatabase& statement);
  void Do(const CreateLogin& statement);
  void Do(const DropLogin& statement);
  void Do(const CreateUser& statement);
  void Do(const DropUser& statement);
  void Do(const SetOption& statement);
  void Do(const TransactionStatement& statement);
  void Do(const PrintText& statement);
  void Do(const CallProcedure& statement);
  void Do(const NoEffect& statement);
  void Do(const DataStatement& statement);

  bool IsTrue(Range condition);
  void SwitchTo(const std::string& name);
  void CloseOthers();
  void RefuseInTransaction(std::string_view statement) const;
  SqliteDatabase& Current();
  void RunSql(const std::string& sql, DataStatement::Verb verb, bool isLast);
  void SendRows(SqliteStatement& rows);
  void SendValue(SqliteStatement& rows, int index, const ResultColumn& column);
  void Done(DoneCommand command = DoneCommand::None, std::optional<std::uint64_t> rows = {});

  // RewriteEnvironment
  std::string PrefixOf(const std::string& database) override;
  std::optional<std::string> Variable(std::string_view name) override;
  std::vector<TableColumn> Columns(const std::string& prefix, const std::string& table) override;
  bool AllowsIdentityInsert(const std::string& table) override;
  void NeedSystemViews() override;

  Catalogue& catalogue_;
  int number_;
  std::string firstDatabase_;
  CancelTest isCancelled_;
  SessionFacts facts_;
  /// By the database's id: a database that is created again has another.
  std::map<int, std::unique_ptr<SqliteDatabase>> open_;
  bool noCount_ = false;
  std::string identityInsert_;
  int transactions_ = 0;
  std::uint64_t transactionId_ = 0;
  std::int64_t rowCount_ = 0;
  std::int32_t lastError_ = 0;

  // The current batch.
  std::string_view batch_;
  ReplyWriter* reply_ = nullptr;
  std::optional<SqlMessage> firstError_;
  bool hasDone_ = false;
  std::size_t countedTo_ = 0;
  std::size_t line_ = 1;
};

}  // namespace talu::standin
