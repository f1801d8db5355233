#include "Parser.h"

#include <algorithm>
#include <charconv>

#include "Text.h"
#include "runtime/TextFunctions.h"
#include "runtime/Unicode.h"
#include "sql/Names.h"

namespace talu::standin {
namespace {

/// IF within IF, block within block: the real server's limit.
constexpr int kDeepestNesting = 32;
constexpr std::size_t kLongestName = 128;
/// Parentheses in parentheses. Newer versions of SQLite have no limit of their own.
constexpr int kDeepestParentheses = 1000;

/// Words that can only begin or end a statement, outside parentheses.
bool IsBoundary(const Token& token) {
  return token.Raw.size() > 1 && token.Raw.size() < 12 &&
         IsAmong(token,
                 "ALTER BACKUP BEGIN BREAK BULK CHECKPOINT CLOSE COMMIT CONTINUE CREATE DBCC "
                 "DEALLOCATE DECLARE DELETE DENY DROP ELSE END EXEC EXECUTE FETCH GOTO GRANT IF "
                 "INSERT KILL MERGE OPEN PRINT RAISERROR RECONFIGURE RESTORE RETURN REVERT REVOKE "
                 "ROLLBACK SAVE SELECT SET SHUTDOWN TRUNCATE UPDATE USE WAITFOR WHILE");
}

}  // namespace

std::string DataName(const std::string& schema, const std::string& name) {
  return schema.empty() || SameWord(schema, "dbo") ? name : schema + "." + name;
}

Token Parser::Take() {
  last_ = next_;
  next_ = lexer_.Next();
  if (next_.Kind == TokenKind::Symbol && static_cast<unsigned char>(next_.Raw.front()) < ' ') {
    FailAt(next_);
  }
  if (next_.IsSymbol("(") && ++parentheses_ > kDeepestParentheses) {
    throw SqlFailure(message::kTooDeep(), true);
  }
  if (next_.IsSymbol(")")) --parentheses_;
  return last_;
}

bool Parser::TakeIf(std::string_view keyword) {
  if (!next_.Is(keyword)) return false;
  Take();
  return true;
}

bool Parser::TakeSymbol(std::string_view symbol) {
  if (!next_.IsSymbol(symbol)) return false;
  Take();
  return true;
}

void Parser::Expect(std::string_view keyword) {
  if (!TakeIf(keyword)) FailAt(next_);
}

void Parser::ExpectSymbol(std::string_view symbol) {
  if (!TakeSymbol(symbol)) FailAt(next_);
}

std::string Parser::TakeName() {
  if (!next_.IsName() || (next_.Kind == TokenKind::Word && sql::IsReserved(next_.Raw))) {
    FailAt(next_);
  }
  std::string name = Take().Value();
  if (name.empty()) FailAt(last_);
  if (name.size() > kLongestName && CountUtf16(name) > kLongestName) {
    throw SqlFailure(message::kIdentifierTooLong(name), true);
  }
  return name;
}

std::string Parser::TakeObjectName() {
  std::string schema;
  std::string name = TakeName();
  while (TakeSymbol(".")) {
    schema = next_.IsSymbol(".") ? std::string() : name;
    name = next_.IsSymbol(".") ? std::string() : TakeName();
  }
  return DataName(schema, name);
}

std::string Parser::TakeString() {
  if (next_.Kind != TokenKind::String) FailAt(next_);
  return Take().Value();
}

int Parser::TakeNumber() {
  if (next_.Kind != TokenKind::Number) FailAt(next_);
  int number = 0;
  std::from_chars(next_.Raw.data(), next_.Raw.data() + next_.Raw.size(), number);
  Take();
  return number;
}

void Parser::FailAt(const Token& token) const {
  const bool isKeyword = token.Kind == TokenKind::Word && sql::IsReserved(token.Raw);
  const Token& near = token.Kind == TokenKind::End ? last_ : token;
  SqlFailure failure(
      isKeyword ? message::kSyntaxNearKeyword(token.Raw) : message::kSyntaxNear(near.Value()),
      true);
  failure.At = near.At;
  throw failure;
}

std::optional<Statement> Parser::Next() {
  while (TakeSymbol(";")) {
  }
  if (next_.Kind == TokenKind::End) return std::nullopt;
  Statement statement = ParseOne();
  isFirst_ = false;
  return statement;
}

Statement Parser::ParseOne() {
  if (++depth_ > kDeepestNesting) throw SqlFailure(message::kTooDeep(), true);
  Statement statement;
  statement.Text.Begin = next_.At;
  const Token head = Take();
  if (IsAmong(head, "SELECT WITH INSERT UPDATE DELETE TRUNCATE")) {
    ParseData(statement, head);
  } else if (head.Is("CREATE")) {
    ParseCreate(statement, head);
  } else if (head.Is("ALTER")) {
    ParseAlter(statement, head);
  } else if (head.Is("DROP")) {
    ParseDrop(statement, head);
  } else if (head.Is("USE")) {
    statement.What = UseDatabase{TakeName()};
  } else if (head.Is("IF")) {
    statement.What = ParseIf();
  } else if (head.Is("SET")) {
    ParseSet(statement, head);
  } else if (head.Is("DECLARE")) {
    ParseDeclare(statement, head);
  } else if (head.Is("PRINT")) {
    const std::size_t begin = next_.At;
    SkipToBoundary(head);
    statement.What = PrintText{{begin, last_.At + last_.Raw.size()}};
  } else if (head.Is("RAISERROR")) {
    ParseRaiseError(statement, head);
  } else if (head.Is("BACKUP")) {
    ParseBackup(statement, head);
  } else if (head.Is("RESTORE")) {
    ParseRestore(statement, head);
  } else if (head.Is("EXEC") || head.Is("EXECUTE")) {
    statement.What = ParseCall(head);
  } else if (head.Is("COMMIT") || head.Is("ROLLBACK")) {
    const bool isNamed = TakeIf("TRANSACTION") || TakeIf("TRAN");
    if (isNamed ? next_.IsName() && !IsBoundary(next_) : next_.Is("WORK")) Take();
    statement.What =
        TransactionStatement{head.Is("COMMIT") ? TransactionStatement::Action::Commit
                                               : TransactionStatement::Action::Rollback};
  } else if (head.Is("BEGIN")) {
    ParseBegin(statement);
  } else {
    ParseOther(statement, head);
  }
  statement.Text.End = last_.At + last_.Raw.size();
  --depth_;
  return statement;
}

void Parser::ParseData(Statement& statement, const Token& head) {
  using Verb = DataStatement::Verb;
  Lexer ahead = lexer_;
  if (head.Is("UPDATE") && next_.Is("STATISTICS")) {
    SkipToBoundary(head);
    statement.What = KeptStatement{KeptStatement::Action::Alter, "STATISTICS", {}, false};
    return;
  }
  if (head.Is("SELECT") && next_.Kind == TokenKind::Variable && ahead.Next().IsSymbol("=")) {
    AssignVariables assigned;
    do {
      const std::string name = Take().Value();
      if (!TakeSymbol("=")) break;
      assigned.All.push_back({name, SkipValue()});
    } while (TakeSymbol(",") && next_.Kind == TokenKind::Variable);
    const bool isWhole = next_.Kind == TokenKind::End || next_.IsSymbol(";") || IsBoundary(next_);
    const Range last = assigned.All.back().Value;
    bool hasFrom = false;
    Lexer inside(batch_, last.Begin, last.End);
    for (Token token = inside.Next(); token.Kind != TokenKind::End; token = inside.Next()) {
      hasFrom = hasFrom || token.Is("FROM");
    }
    if (!isWhole || (hasFrom && assigned.All.size() > 1)) {
      return TakeUnknown(statement, head, "SELECT into variables");
    }
    statement.What = std::move(assigned);
    return;
  }
  if (head.Is("TRUNCATE")) Expect("TABLE");
  const Verb verb = head.Is("INSERT")     ? Verb::Insert
                    : head.Is("UPDATE")   ? Verb::Update
                    : head.Is("DELETE")   ? Verb::Delete
                    : head.Is("TRUNCATE") ? Verb::Truncate
                                          : Verb::Select;
  SkipToBoundary(head);
  statement.What = DataStatement{verb};
}

/// Statements that begin with a word that has no procedure of its own.
void Parser::ParseOther(Statement& statement, const Token& head) {
  const std::string word = UCase(head.Raw);
  if (IsAmong(head, "GRANT DENY REVOKE ENABLE DISABLE")) {
    SkipToBoundary(head);
    statement.What = KeptStatement{KeptStatement::Action::Create, word, {}, false};
  } else if (IsAmong(head, "CHECKPOINT RECONFIGURE")) {
    SkipToBoundary(head);
  } else if (head.Is("WHILE")) {
    SkipCondition();
    ParseOne();
    statement.What = UnknownStatement{word};
  } else if (head.Is("MERGE")) {  // which a semicolon ends
    while (next_.Kind != TokenKind::End && !next_.IsSymbol(";")) Take();
    statement.What = UnknownStatement{word};
  } else if (head.Kind == TokenKind::Word && !head.Is("ELSE") && !head.Is("END") &&
             sql::BeginsStatement(head.Raw)) {
    TakeUnknown(statement, head, word);
  } else if (head.IsName() && TakeSymbol(":")) {
    statement.What = UnknownStatement{"GOTO"};
  } else if (head.IsName() && isFirst_ && depth_ == 1 && !sql::IsReserved(head.Raw)) {
    statement.What = ParseCall(head);  // EXEC may be left out
  } else {
    FailAt(head);
  }
}

void Parser::ParseBegin(Statement& statement) {
  if (TakeIf("TRANSACTION") || TakeIf("TRAN")) {
    if (next_.IsName() && !IsBoundary(next_)) Take();
    statement.What = TransactionStatement{TransactionStatement::Action::Begin};
  } else if (TakeIf("TRY")) {
    // What CATCH would do about an error is not done: the error is seen.
    statement.What = ParseBlock();
    Expect("TRY");
    TakeSymbol(";");
    Expect("BEGIN");
    Expect("CATCH");
    while (TakeSymbol(";")) {
    }
    if (!TakeIf("END")) ParseBlock();
    Expect("CATCH");
  } else if (next_.Is("DISTRIBUTED") || next_.Is("CONVERSATION") || next_.Is("DIALOG")) {
    TakeUnknown(statement, last_, "BEGIN " + UCase(next_.Raw));
  } else {
    statement.What = ParseBlock();
  }
}

Range Parser::SkipCondition() {
  Range condition{next_.At, 0};
  while (next_.Kind != TokenKind::End && !IsBoundary(next_)) {
    if (next_.IsSymbol(";")) FailAt(next_);
    SkipValue();
    TakeSymbol(",");
  }
  condition.End = last_.At + last_.Raw.size();
  if (next_.Kind == TokenKind::End || condition.End <= condition.Begin) FailAt(next_);
  return condition;
}

IfStatement Parser::ParseIf() {
  IfStatement result;
  result.Condition = SkipCondition();
  result.Branches.push_back(ParseOne());
  Lexer ahead = lexer_;
  if (next_.IsSymbol(";") && ahead.Next().Is("ELSE")) Take();
  if (TakeIf("ELSE")) result.Branches.push_back(ParseOne());
  return result;
}

Block Parser::ParseBlock() {
  Block block;
  while (true) {
    while (TakeSymbol(";")) {
    }
    if (TakeIf("END")) break;
    if (next_.Kind == TokenKind::End) FailAt(next_);
    block.Statements.push_back(ParseOne());
  }
  if (block.Statements.empty()) FailAt(last_);
  return block;
}

/// Skips an expression: up to a comma, a semicolon, or the next statement.
Range Parser::SkipValue() {
  Range value{next_.At, next_.At};
  int parentheses = 0;
  int cases = 0;
  while (next_.Kind != TokenKind::End) {
    if (parentheses == 0 && cases == 0 &&
        (IsBoundary(next_) || next_.IsSymbol(",") || next_.IsSymbol(";") || next_.Is("GO"))) {
      break;
    }
    if (next_.IsSymbol("(")) ++parentheses;
    if (next_.IsSymbol(")") && --parentheses < 0) FailAt(next_);
    if (next_.Is("CASE")) ++cases;
    if (next_.Is("END")) --cases;
    Take();
    value.End = last_.At + last_.Raw.size();
  }
  if (parentheses > 0 || next_.Is("GO")) FailAt(next_);
  return value;
}

void Parser::TakeUnknown(Statement& statement, const Token& head, std::string construct) {
  SkipToBoundary(head);
  statement.What = UnknownStatement{std::move(construct)};
}

/// Skips the rest of a statement whose first word is `head`. A word that could begin a statement
/// continues this one where the grammar asks for it.
void Parser::SkipToBoundary(const Token& head) {
  int parentheses = 0;
  int cases = 0;
  bool hasSource = !head.Is("INSERT");  // for INSERT: where its rows come from
  bool hasSet = !head.Is("UPDATE");
  bool hasAction = !head.Is("ALTER");  // ADD, DROP or ALTER of something
  bool hasMain = !head.Is("WITH");     // after common table expressions
  bool inGrantedList = IsAmong(head, "GRANT DENY REVOKE");
  // Elsewhere the word would be an alias or an argument.
  bool mayBeGo = IsAmong(head, "SELECT WITH EXEC EXECUTE");
  while (next_.Kind != TokenKind::End) {
    // OPENROWSET('driver', 'server'; 'user'; 'password', …)
    if (next_.IsSymbol(";") && (parentheses <= 0 || last_.Kind != TokenKind::String)) break;
    if (next_.IsSymbol("(")) {
      ++parentheses;
    } else if (next_.IsSymbol(")")) {
      if (--parentheses < 0) FailAt(next_);
    } else if (parentheses == 0 && next_.Kind == TokenKind::Word) {
      const Token& word = next_;
      if (word.Is("GO") && !mayBeGo) FailAt(word);
      if (word.Is("CASE")) {
        ++cases;
      } else if (word.Is("END") && cases > 0) {
        --cases;
      } else if (word.Is("ELSE") && cases > 0) {
      } else if (word.Is("VALUES") || word.Is("DEFAULT")) {
        hasSource = true;
      } else if (inGrantedList && IsAmong(word, "ON TO FROM")) {
        inGrantedList = false;
      } else if (!hasAction && word.Is("ADD")) {
        hasAction = true;
      } else if (IsBoundary(word) && !inGrantedList) {
        const bool goesOn = (word.Is("SELECT") &&
                             (!hasSource || IsAmong(last_, "UNION ALL EXCEPT INTERSECT AS FOR"))) ||
                            (IsAmong(word, "EXEC EXECUTE") && (!hasSource || last_.Is("WITH"))) ||
                            (IsAmong(word, "UPDATE DELETE") && IsAmong(last_, "ON FOR")) ||
                            (word.Is("INSERT") && last_.Is("BULK")) ||
                            (word.Is("SET") && (!hasSet || IsAmong(last_, "UPDATE DELETE"))) ||
                            (!hasAction && IsAmong(word, "DROP ALTER SET")) ||
                            (word.Is("IF") && head.Is("DROP")) ||
                            (word.Is("FETCH") && last_.Is("ROWS")) ||
                            (!hasMain && IsAmong(word, "SELECT INSERT UPDATE DELETE"));
        if (!goesOn) return;
        if (!hasMain) hasSet = !word.Is("UPDATE");
        if (!hasMain && word.Is("INSERT")) {
          hasSource = false;
        } else if (IsAmong(word, "SELECT EXEC EXECUTE")) {
          hasSource = mayBeGo = true;
        }
        if (word.Is("SET")) hasSet = true;
        hasMain = hasAction = true;
      }
    }
    Take();
  }
  if (parentheses > 0) FailAt(next_);
}

}  // namespace talu::standin
