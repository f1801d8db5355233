#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Messages.h"
#include "Reader.h"
#include "Statements.h"

namespace talu::standin {

/// Reads the statements of one batch, one after another, in time linear in its length. Statements
/// that the server itself executes are read word by word; for those that SQLite executes, and for
/// unknown ones, only the extent is determined here.
class Parser : private Reader {
 public:
  explicit Parser(std::string_view batch) : Reader(batch), batch_(batch) {}

  /// The next statement; nothing at the end. Raises SqlFailure for what no server could read (102
  /// and 156 near the word, 105, 111, 113).
  std::optional<Statement> NextStatement();

 private:
  [[noreturn]] void FailAt(const Token& token) const override;
  std::string TakeString();
  int TakeNumber();

  Statement ParseOne();
  void ParseData(Statement& statement, const Token& head);
  void ParseCreate(Statement& statement, const Token& head);
  void ParseAlter(Statement& statement, const Token& head);
  void ParseDrop(Statement& statement, const Token& head);
  void ParseKept(Statement& statement, const Token& head, KeptStatement::Action action);
  void ParseOther(Statement& statement, const Token& head);
  void ParseBegin(Statement& statement);
  IfStatement ParseIf();
  Block ParseBlock();
  void ParseSet(Statement& statement, const Token& head);
  void ParseDeclare(Statement& statement, const Token& head);
  void ParseRaiseError(Statement& statement, const Token& head);
  CallProcedure ParseCall(const Token& head);
  Range SkipCondition();
  Range SkipValue();

  void ParseCreateDatabase(Statement& statement, const Token& head);
  std::vector<std::string> ParseFiles();
  void ParseAlterDatabase(Statement& statement, const Token& head);
  void ParseRestore(Statement& statement, const Token& head);
  void ParseBackup(Statement& statement, const Token& head);
  CatalogueStatement ParseCreateLogin();
  CatalogueStatement ParseCreateUser();
  void SkipOptionList(std::string_view known);

  void TakeUnknown(Statement& statement, const Token& head, std::string construct);
  void SkipToBoundary(const Token& head);

  std::string_view batch_;
  bool isFirst_ = true;
  int depth_ = 0;
};

}  // namespace talu::standin
