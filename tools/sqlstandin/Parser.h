#pragma once

#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

#include "Lexer.h"
#include "Messages.h"
#include "Statements.h"

namespace talu::standin {

/// Reads the statements of one batch. Statements that the server itself executes are read word by
/// word; for those that SQLite executes, only the extent is determined here.
class Parser {
 public:
  explicit Parser(std::string_view batch) : batch_(batch), lexer_(batch), next_(lexer_.Next()) {}

  std::vector<Statement> ParseAll();

 private:
  Token Take();
  bool TakeIf(std::string_view keyword);
  bool TakeSymbol(std::string_view symbol);
  void Expect(std::string_view keyword);
  void ExpectSymbol(std::string_view symbol);
  std::string TakeName();
  std::string TakeString();
  [[noreturn]] void FailAt(const Token& token) const;

  Statement ParseOne();
  void ParseCreate(Statement& statement);
  void ParseAlter(Statement& statement);
  void ParseDrop(Statement& statement);
  IfStatement ParseIf();
  Block ParseBlock();
  SetOption ParseSet();
  CallProcedure ParseCall();

  CreateDatabase ParseCreateDatabase();
  std::vector<std::string> ParseFiles();
  AlterDatabase ParseAlterDatabase();
  DropDatabase ParseDropDatabase();
  BackupDatabase ParseBackup();
  CreateLogin ParseCreateLogin();
  CreateUser ParseCreateUser();
  void SkipOptionList(std::initializer_list<std::string_view> known);

  DataStatement TakeData(DataStatement::Verb verb, const Token& head);
  void SkipToBoundary(const Token& head);

  std::string_view batch_;
  Lexer lexer_;
  Token next_;
  /// The last token read: an error at the end of the batch names it.
  Token last_;
  int depth_ = 0;
};

}  // namespace talu::standin
