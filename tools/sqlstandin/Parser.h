#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Lexer.h"
#include "Messages.h"
#include "Statements.h"

namespace talu::standin {

/// Reads the statements of one batch, one after another, in time linear in its length. Statements
/// that the server itself executes are read word by word; for those that SQLite executes, and for
/// unknown ones, only the extent is determined here.
class Parser {
 public:
  explicit Parser(std::string_view batch) : batch_(batch), lexer_(batch), next_(lexer_.Next()) {}

  /// The next statement; nothing at the end. Raises SqlFailure for what no server could read (102
  /// and 156 near the word, 105, 111, 113).
  std::optional<Statement> Next();

 private:
  Token Take();
  bool TakeIf(std::string_view keyword);
  bool TakeSymbol(std::string_view symbol);
  void Expect(std::string_view keyword);
  void ExpectSymbol(std::string_view symbol);
  std::string TakeName();
  std::string TakeObjectName();
  std::string TakeString();
  int TakeNumber();
  [[noreturn]] void FailAt(const Token& token) const;

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
  DropDatabase ParseDropDatabase();
  void ParseRestore(Statement& statement, const Token& head);
  void ParseBackup(Statement& statement, const Token& head);
  CreateLogin ParseCreateLogin();
  CreateUser ParseCreateUser();
  void SkipOptionList(std::string_view known);

  void TakeUnknown(Statement& statement, const Token& head, std::string construct);
  void SkipToBoundary(const Token& head);

  std::string_view batch_;
  Lexer lexer_;
  Token next_;
  /// The last token read: an error at the end of the batch names it.
  Token last_;
  bool isFirst_ = true;
  int depth_ = 0;
  int parentheses_ = 0;
};

}  // namespace talu::standin
