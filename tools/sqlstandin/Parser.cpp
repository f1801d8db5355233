#include "Parser.h"

#include "ColumnType.h"
#include "runtime/TextFunctions.h"
#include "sql/Names.h"

namespace talu::standin {
namespace {

/// IF within IF, block within block: the real server's limit.
constexpr int kDeepestNesting = 32;

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

void Parser::FailAt(const Token& token) const {
  const bool isKeyword = token.Kind == TokenKind::Word && sql::IsReserved(token.Raw);
  const Token& near = token.Kind == TokenKind::End ? Last() : token;
  SqlFailure failure(
      isKeyword ? message::kSyntaxNearKeyword(token.Raw) : message::kSyntaxNear(near.Value()),
      true);
  failure.At = near.At;
  throw failure;
}

std::string Parser::TakeString() {
  if (Next().Kind != TokenKind::String) FailAt(Next());
  return Take().Value();
}

int Parser::TakeNumber() {
  if (Next().Kind != TokenKind::Number) FailAt(Next());
  return static_cast<int>(ToSize(Take().Raw));
}

std::optional<Statement> Parser::NextStatement() {
  while (TakeSymbol(";")) {
  }
  if (IsAtEnd()) return std::nullopt;
  Statement statement = ParseOne();
  isFirst_ = false;
  return statement;
}

Statement Parser::ParseOne() {
  if (++depth_ > kDeepestNesting) throw SqlFailure(message::kTooDeep(), true);
  Statement statement;
  statement.Text.Begin = Next().At;
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
    statement.What = CatalogueStatement{CatalogueStatement::Action::Use, {TakeName()}};
  } else if (head.Is("IF")) {
    statement.What = ParseIf();
  } else if (head.Is("SET")) {
    ParseSet(statement, head);
  } else if (head.Is("DECLARE")) {
    ParseDeclare(statement, head);
  } else if (head.Is("PRINT")) {
    const std::size_t begin = Next().At;
    SkipToBoundary(head);
    statement.What = PrintText{{begin, At()}};
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
    if (isNamed ? Next().IsName() && !IsBoundary(Next()) : Next().Is("WORK")) Take();
    statement.What =
        TransactionStatement{head.Is("COMMIT") ? TransactionStatement::Action::Commit
                                               : TransactionStatement::Action::Rollback};
  } else if (head.Is("BEGIN")) {
    ParseBegin(statement);
  } else {
    ParseOther(statement, head);
  }
  statement.Text.End = At();
  --depth_;
  return statement;
}

void Parser::ParseData(Statement& statement, const Token& head) {
  using Verb = DataStatement::Verb;
  if (head.Is("UPDATE") && Next().Is("STATISTICS")) {
    SkipToBoundary(head);
    statement.What = KeptStatement{KeptStatement::Action::Alter, "STATISTICS", {}, false};
    return;
  }
  Reader ahead = *this;
  const bool isVariable = head.Is("SELECT") && ahead.Take().Kind == TokenKind::Variable;
  if (isVariable && ahead.Next().IsSymbol("=")) {
    AssignVariables assigned;
    do {
      const std::string name = Take().Value();
      if (!TakeSymbol("=")) break;
      assigned.All.push_back({name, SkipValue()});
    } while (TakeSymbol(",") && Next().Kind == TokenKind::Variable);
    const bool isWhole = IsAtEnd() || Next().IsSymbol(";") || IsBoundary(Next());
    bool hasFrom = false;
    Reader inside(batch_, assigned.All.back().Value);
    while (!inside.IsAtEnd()) hasFrom |= inside.Take().Is("FROM");
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
    while (!IsAtEnd() && !Next().IsSymbol(";")) Take();
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
    if (Next().IsName() && !IsBoundary(Next())) Take();
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
  } else if (Next().Is("DISTRIBUTED") || Next().Is("CONVERSATION") || Next().Is("DIALOG")) {
    TakeUnknown(statement, Last(), "BEGIN " + UCase(Next().Raw));
  } else {
    statement.What = ParseBlock();
  }
}

Range Parser::SkipCondition() {
  Range condition{Next().At, 0};
  while (!IsAtEnd() && !IsBoundary(Next())) {
    if (Next().IsSymbol(";")) FailAt(Next());
    SkipValue();
    TakeSymbol(",");
  }
  condition.End = At();
  if (IsAtEnd() || condition.End <= condition.Begin) FailAt(Next());
  return condition;
}

IfStatement Parser::ParseIf() {
  IfStatement result;
  result.Condition = SkipCondition();
  result.Branches.push_back(ParseOne());
  Reader ahead = *this;
  if (ahead.TakeSymbol(";") && ahead.Next().Is("ELSE")) Take();
  if (TakeIf("ELSE")) result.Branches.push_back(ParseOne());
  return result;
}

Block Parser::ParseBlock() {
  Block block;
  while (true) {
    while (TakeSymbol(";")) {
    }
    if (TakeIf("END")) break;
    if (IsAtEnd()) FailAt(Next());
    block.Statements.push_back(ParseOne());
  }
  if (block.Statements.empty()) FailAt(Last());
  return block;
}

/// Skips an expression: up to a comma, a semicolon, or the next statement.
Range Parser::SkipValue() {
  Range value{Next().At, Next().At};
  int parentheses = 0;
  int cases = 0;
  while (!IsAtEnd()) {
    if (parentheses == 0 && cases == 0 &&
        (IsBoundary(Next()) || Next().IsSymbol(",") || Next().IsSymbol(";") || Next().Is("GO"))) {
      break;
    }
    if (Next().IsSymbol("(")) ++parentheses;
    if (Next().IsSymbol(")") && --parentheses < 0) FailAt(Next());
    if (Next().Is("CASE")) ++cases;
    if (Next().Is("END")) --cases;
    Take();
    value.End = At();
  }
  if (parentheses > 0 || Next().Is("GO")) FailAt(Next());
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
  while (!IsAtEnd()) {
    // OPENROWSET('driver', 'server'; 'user'; 'password', …)
    if (Next().IsSymbol(";") && (parentheses <= 0 || Last().Kind != TokenKind::String)) break;
    if (Next().IsSymbol("(")) {
      ++parentheses;
    } else if (Next().IsSymbol(")")) {
      if (--parentheses < 0) FailAt(Next());
    } else if (parentheses == 0 && Next().Kind == TokenKind::Word) {
      const Token& word = Next();
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
        const bool goesOn =
            (word.Is("SELECT") &&
             (!hasSource || IsAmong(Last(), "UNION ALL EXCEPT INTERSECT AS FOR"))) ||
            (IsAmong(word, "EXEC EXECUTE") && (!hasSource || Last().Is("WITH"))) ||
            (IsAmong(word, "UPDATE DELETE") && IsAmong(Last(), "ON FOR")) ||
            (word.Is("INSERT") && Last().Is("BULK")) ||
            (word.Is("SET") && (!hasSet || IsAmong(Last(), "UPDATE DELETE"))) ||
            (!hasAction && IsAmong(word, "DROP ALTER SET")) || (word.Is("IF") && head.Is("DROP")) ||
            (word.Is("FETCH") && Last().Is("ROWS")) ||
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
  if (parentheses > 0) FailAt(Next());
}

}  // namespace talu::standin
