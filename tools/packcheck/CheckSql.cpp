#include "CheckSql.h"

#include <algorithm>

#include "runtime/TextFunctions.h"

namespace talu::packcheck {

using sql::TokenKind;

void SqlFollower::TakeLine(const std::string& file, int number, std::string_view line) {
  file_ = &file;
  number_ = number;
  line_ = line;
  hasVariables_ = line.find("$(") != std::string_view::npos;
  sql::Lexer lexer(line, open_);
  while (true) {
    // A token is made where it is used: to copy one that has just been written stalls.
    const sql::Token token = lexer.NextOrComment();
    if (token.Kind == TokenKind::End) break;
    if (token.Kind != TokenKind::Comment) Shape.Take(token, number);
    if (hasVariables_) NoteVariable(token);
    Take(token);
    if (!token.IsClosed && token.Opening > 0) openedLine_ = number;
  }
  open_ = lexer.Open();
}

void SqlFollower::Restart() {
  open_ = {};
  depth_ = 0;
  waiting_ = Waiting::Nothing;
  verb_.clear();
  aboutLogin_ = false;
  argument_ = 0;
}

void SqlFollower::ClearBatch() {
  Facts = {};
  Shape.Clear();
}

// What a command-line tool would have replaced. In a text it may be meant as it is, unless it is
// all of it or a path; rows may have anything.
void SqlFollower::NoteVariable(const sql::Token& token) {
  bool isMeant = token.Kind == TokenKind::Name || token.IsSymbol("$");
  if (token.Kind == TokenKind::String && token.IsClosed && token.Opening > 0) {
    const std::string_view inside = token.Inside();
    const bool isWhole = inside.starts_with("$(") && inside.find(')') == inside.size() - 1;
    isMeant = waiting_ == Waiting::FileName || (isWhole && !Shape.InRows()) ||
              Contains(UCase(line_), "BULK INSERT");
  }
  if (!isMeant) return;
  std::string_view text = token.Raw;
  if (token.Kind == TokenKind::Symbol) text = line_.substr(token.At);
  const std::size_t start = text.find("$(");
  if (start == std::string_view::npos) return;
  if (token.Kind == TokenKind::Symbol && start != 0) return;
  const std::size_t end = text.find(')', start);
  if (end == std::string_view::npos || end == start + 2) return;
  const std::string_view name = text.substr(start + 2, end - start - 2);
  if (!std::ranges::all_of(name, sql::IsWordPart)) return;
  Facts.Variables.push_back({std::string(text.substr(start, end + 1 - start)), Here()});
}

void SqlFollower::Take(const sql::Token& token) {
  switch (token.Kind) {
    case TokenKind::Comment:
      return;
    case TokenKind::Word:
    case TokenKind::Variable:
      TakeWord(token);
      return;
    case TokenKind::Symbol:
      if (token.Raw != "=") TakeSymbol(token.Raw.front());
      return;  // "=" is between FILENAME or PASSWORD and its text
    case TokenKind::Name:
    case TokenKind::String:
      if (!token.IsClosed) return;
      if (token.Kind == TokenKind::String) TakeText(token.Inside());
      if (waiting_ == Waiting::Name) TakeName(token);
      break;
    default:
      waiting_ = Waiting::Nothing;
  }
  verb_.clear();
}

void SqlFollower::TakeSymbol(char symbol) {
  if (symbol == '(') ++depth_;
  if (symbol == ')') depth_ = std::max(depth_ - 1, 0);
  if (symbol == ';') {
    aboutLogin_ = false;
    argument_ = 0;
  }
  if (symbol == ',' && argument_ > 0) ++argument_;
  // USE $(Name), which the command-line tool would have replaced
  const bool isUse = statement_.Verb == SqlStatement::Kind::Use;
  if (symbol == '$' && waiting_ == Waiting::Name && isUse) Facts.Statements.push_back(statement_);
  waiting_ = Waiting::Nothing;
  verb_.clear();
}

void SqlFollower::TakeWord(const sql::Token& word) {
  if (waiting_ == Waiting::Name) {
    // DROP DATABASE IF EXISTS name
    if (!word.IsOneOf({"IF", "EXISTS"})) TakeName(word);
    return;
  }
  waiting_ = Waiting::Nothing;
  if (word.Is("SP_ADDLOGIN")) argument_ = 1;
  // Most words are not of interest; a few comparisons show it.
  constexpr std::string_view kFirst = "CADULFPcadulfp";
  if (word.Raw.size() < 3 || word.Raw.size() > 8 ||
      kFirst.find(word.Raw[0]) == std::string_view::npos) {
    verb_.clear();
    return;
  }
  TakeKeyword(word);
}

void SqlFollower::TakeKeyword(const sql::Token& word) {
  if (word.IsOneOf({"CREATE", "ALTER", "DROP"})) {
    verb_ = word.Raw;
    verbAt_ = word.At;
    verbLine_ = number_;
    return;
  }
  const bool database = word.Is("DATABASE");
  const bool login = word.Is("LOGIN");
  if (word.Is("USE")) {
    statement_ = {SqlStatement::Kind::Use, false, std::string(word.Raw), "", Here()};
    waiting_ = Waiting::Name;
  } else if ((database || login) && !verb_.empty()) {
    statement_ = {SqlStatement::Kind::Create, login, "", "", Here()};
    if (EqualsUpper(verb_, "ALTER")) statement_.Verb = SqlStatement::Kind::Alter;
    if (EqualsUpper(verb_, "DROP")) statement_.Verb = SqlStatement::Kind::Drop;
    statement_.Spelled =
        verbLine_ == number_
            ? std::string(line_.substr(verbAt_, word.At + word.Raw.size() - verbAt_))
            : verb_.append(kCrLf).append(word.Raw);
    statement_.When = Shape.Conditional();
    aboutLogin_ = login;
    waiting_ = Waiting::Name;
  } else if (word.Is("FILENAME")) {
    waiting_ = Waiting::FileName;
  } else if (aboutLogin_ && word.Is("PASSWORD")) {
    waiting_ = Waiting::Password;
  }
  verb_.clear();
}

void SqlFollower::TakeText(std::string_view text) {
  if (waiting_ == Waiting::FileName) Facts.FileNames.push_back({std::string(text), Here()});
  if ((waiting_ == Waiting::Password || argument_ == 2) && !text.empty()) {
    Facts.Passwords.push_back({std::string(text), Here()});
    argument_ = 0;
  }
  waiting_ = Waiting::Nothing;
}

void SqlFollower::TakeName(const sql::Token& name) {
  waiting_ = Waiting::Nothing;
  // Continue as other statements: USE HINT, ALTER DATABASE SCOPED ..., GRANT CREATE DATABASE TO.
  if (name.IsOneOf({"HINT", "PLAN", "SCOPED", "AUDIT", "ENCRYPTION", "TO", "CURRENT"})) return;
  if (statement_.Login && statement_.Verb == SqlStatement::Kind::Alter) return;
  statement_.Name = name.Raw;
  Facts.Statements.push_back(statement_);
}

std::string BareName(std::string_view name) {
  if (name.size() >= 2 && (name.front() == '[' || name.front() == '"')) {
    name = name.substr(1, name.size() - 2);
  }
  return UCase(name);
}

}  // namespace talu::packcheck
