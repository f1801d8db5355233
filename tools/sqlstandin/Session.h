#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "Catalogue.h"
#include "Journal.h"
#include "KeptObjects.h"
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
          CancelTest isCancelled, bool isStrict);

  /// Executes a batch and writes its answer, all but the end mark. Raises Cancelled.
  Outcome Run(std::string_view batch, ReplyWriter& reply);

  // What a client may request with separate messages.
  void BeginTransaction(ReplyWriter& reply);
  void EndTransaction(ReplyWriter& reply, bool commits);
  /// Restores the state after the login.
  void Reset();

  const std::string& DatabaseName() const { return facts_.Current.Name; }

 private:
  void RunText(std::string_view text);
  void CheckUses(const Statement& statement);
  bool BeginRow(const Statement& statement);
  void EndRows();
  bool Execute(const Statement& statement);
  bool Report(const SqlFailure& failure, std::size_t at);
  bool Note(const std::string& construct, const Statement& statement);
  bool IsUncertain(const SqlFailure& failure, const Statement& statement);
  std::string HeadOf(const Statement& statement) const;
  std::size_t LineOf(std::size_t at);

  bool ExecuteLeaf(const Statement& statement);
  void Do(const IfStatement& statement);
  void Do(const CatalogueStatement& statement);
  void Do(const CreateDatabase& statement);
  void Do(const AlterDatabase& statement);
  void Do(const BackupDatabase& statement);
  void Do(const VerifyBackup& statement);
  void Do(const SetOption& statement);
  void Do(const TransactionStatement& statement);
  void Do(const PrintText& statement);
  void Do(const CallProcedure& statement);
  void Do(const NoEffect& statement);
  void Do(const RaiseError& statement);
  void Do(const AssignVariables& statement);
  void Do(const KeptStatement& statement);
  void Do(const UnknownStatement& statement);
  void Do(const DataStatement& statement);

  bool MakeView(const std::string& name);
  void NeedSchemaOf(const std::string& name);
  void KeepNamed(const KeptStatement& statement, const std::string& name);
  bool CallSystemProcedure(const CallProcedure& statement, const std::string& name);
  bool IsTrue(Range condition);
  void SwitchTo(const std::string& name);
  void Use(const std::string& name);
  void CloseOthers();
  void RefuseInTransaction(std::string_view statement) const;
  SqliteDatabase& Current();
  void RunSql(const std::string& sql, bool isLast);
  void SendRows(SqliteStatement& rows);
  void SendValue(SqliteStatement& rows, int index, const ResultColumn& column);
  void Done(DoneCommand command = DoneCommand::None, std::optional<std::uint64_t> rows = {});

  // RewriteEnvironment
  std::string PrefixOf(const std::string& database) override;
  std::optional<std::string> Variable(std::string_view name) override;
  std::vector<TableColumn> Columns(const std::string& prefix, const std::string& table) override;
  bool AllowsIdentityInsert(const std::string& table) override;
  void ReadsSystemView() override { isApproximate_ = true; }
  std::string DefinitionOf(const std::string& prefix, const std::string& table) override;
  bool IsSchema(std::string_view name) override;
  bool HasType(const std::string& name) override;

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
  /// The statements that insert rows in a transaction which the client did not ask for, and the
  /// columns of their tables.
  int rows_ = 0;
  std::map<std::string, std::vector<TableColumn>> columns_;
  std::uint64_t transactionId_ = 0;
  std::int64_t rowCount_ = 0;
  std::int32_t lastError_ = 0;

  bool isStrict_;

  // The current batch.
  std::string_view batch_;
  ReplyWriter* reply_ = nullptr;
  const Statement* statement_ = nullptr;
  bool goesOn_ = true;
  /// The statement names what is not here as it is on the real server, so that an error about a
  /// column says nothing.
  bool isApproximate_ = false;
  /// The current database's, without dbo.
  std::optional<std::set<std::string>> schemas_;
  Outcome outcome_;
  /// The values of its variables, as SQL; none where it is not known.
  std::map<std::string, std::optional<std::string>> variables_;
  bool hasDone_ = false;
  std::size_t countedTo_ = 0;
  std::size_t line_ = 1;
};

}  // namespace talu::standin
