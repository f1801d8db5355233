#include "Parser.h"

#include <algorithm>

#include "Text.h"

namespace talu::standin {
namespace {

/// IF within IF, block within block: the real server's limit.
constexpr int kDeepestNesting = 32;
constexpr std::size_t kLongestName = 128;

/// Words that can only begin or end a statement, outside parentheses.
bool IsBoundary(const Token& token) {
  return token.IsOneOf({"SELECT",   "INSERT", "UPDATE",     "DELETE", "CREATE",     "ALTER",
                        "DROP",     "USE",    "IF",         "ELSE",   "BEGIN",      "END",
                        "PRINT",    "EXEC",   "EXECUTE",    "SET",    "DECLARE",    "BACKUP",
                        "RESTORE",  "GRANT",  "DENY",       "REVOKE", "TRUNCATE",   "COMMIT",
                        "ROLLBACK", "SAVE",   "WAITFOR",    "RETURN", "RAISERROR",  "WHILE",
                        "MERGE",    "DBCC",   "CHECKPOINT", "KILL",   "RECONFIGURE"});
}

}  // namespace

std::vector<Statement> ParseStatements(std::string_view batch) {
  return Parser(batch).ParseAll();
}

Token Parser::Take() {
  last_ = next_;
  next_ = lexer_.Next();
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
  if (!next_.IsName() || IsBoundary(next_)) FailAt(next_);
  std::string name = Take().Value();
  if (name.empty()) FailAt(last_);
  if (name.size() > kLongestName && CountUnits(name) > kLongestName) {
    throw SqlFailure(message::IdentifierTooLong(name), true);
  }
  return name;
}

std::string Parser::TakeString() {
  if (next_.Kind != TokenKind::String) FailAt(next_);
  return Take().Value();
}

void Parser::FailAt(const Token& token) const {
  const Token& near = token.Kind == TokenKind::End ? last_ : token;
  throw SqlFailure(message::SyntaxNear(near.Value()), true);
}

std::vector<Statement> Parser::ParseAll() {
  std::vector<Statement> statements;
  while (true) {
    while (TakeSymbol(";")) {
    }
    if (next_.Kind == TokenKind::End) return statements;
    statements.push_back(ParseOne());
  }
}

Statement Parser::ParseOne() {
  if (++depth_ > kDeepestNesting) throw SqlFailure(message::TooDeep(), true);
  Statement statement;
  statement.At = next_.At;
  const Token head = Take();
  if (head.Is("SELECT") || head.Is("WITH")) {
    statement.What = TakeData(DataStatement::Verb::Select, head);
  } else if (head.Is("INSERT")) {
    statement.What = TakeData(DataStatement::Verb::Insert, head);
  } else if (head.Is("UPDATE")) {
    statement.What = TakeData(DataStatement::Verb::Update, head);
  } else if (head.Is("DELETE")) {
    statement.What = TakeData(DataStatement::Verb::Delete, head);
  } else if (head.Is("TRUNCATE")) {
    Expect("TABLE");
    statement.What = TakeData(DataStatement::Verb::Truncate, head);
  } else if (head.Is("CREATE")) {
    ParseCreate(statement);
  } else if (head.Is("ALTER")) {
    ParseAlter(statement);
  } else if (head.Is("DROP")) {
    ParseDrop(statement);
  } else if (head.Is("USE")) {
    statement.What = UseDatabase{TakeName()};
  } else if (head.Is("IF")) {
    statement.What = ParseIf();
  } else if (head.Is("SET")) {
    statement.What = ParseSet();
  } else if (head.Is("PRINT")) {
    const std::size_t begin = next_.At;
    SkipToBoundary(head);
    statement.What = PrintText{{begin, last_.At + last_.Raw.size()}};
  } else if (head.Is("BACKUP")) {
    statement.What = ParseBackup();
  } else if (head.Is("EXEC") || head.Is("EXECUTE")) {
    statement.What = ParseCall();
  } else if (head.Is("COMMIT") || head.Is("ROLLBACK")) {
    if (!TakeIf("TRANSACTION") && !TakeIf("TRAN")) TakeIf("WORK");
    statement.What =
        TransactionStatement{head.Is("COMMIT") ? TransactionStatement::Action::Commit
                                               : TransactionStatement::Action::Rollback};
  } else if (head.Is("BEGIN")) {
    if (TakeIf("TRANSACTION") || TakeIf("TRAN")) {
      statement.What = TransactionStatement{TransactionStatement::Action::Begin};
    } else {
      statement.What = ParseBlock();
    }
  } else if (head.Is("GRANT") || head.Is("DENY") || head.Is("REVOKE")) {
    SkipToBoundary(head);
    statement.What = NoEffect{};
  } else {
    FailAt(head);
  }
  --depth_;
  return statement;
}

IfStatement Parser::ParseIf() {
  IfStatement result;
  result.Condition.Begin = next_.At;
  int parentheses = 0;
  int cases = 0;
  while (next_.Kind != TokenKind::End && (parentheses > 0 || cases > 0 || !IsBoundary(next_))) {
    if (next_.IsSymbol(";")) FailAt(next_);
    if (next_.IsSymbol("(")) ++parentheses;
    if (next_.IsSymbol(")")) --parentheses;
    if (next_.Is("CASE")) ++cases;
    if (next_.Is("END")) --cases;
    Take();
  }
  result.Condition.End = last_.At + last_.Raw.size();
  if (next_.Kind == TokenKind::End || result.Condition.End <= result.Condition.Begin) FailAt(next_);
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

SetOption Parser::ParseSet() {
  SetOption option;
  const Token head = last_;
  if (next_.Kind == TokenKind::Variable) {
    throw SqlFailure(message::UndeclaredVariable(next_.Raw), true);
  }
  if (!next_.IsName()) FailAt(next_);
  if (TakeIf("NOCOUNT")) option.What = SetOption::Option::NoCount;
  if (TakeIf("IDENTITY_INSERT")) {
    option.What = SetOption::Option::IdentityInsert;
    do {
      option.Table = TakeName();
    } while (TakeSymbol(".") || TakeSymbol("."));
  }
  if (option.What == SetOption::Option::Other) {
    SkipToBoundary(head);
  } else if (TakeIf("ON")) {
    option.On = true;
  } else {
    Expect("OFF");
  }
  return option;
}

CallProcedure Parser::ParseCall() {
  const Token head = last_;
  CallProcedure call;
  do {
    call.Name = TakeName();
  } while (TakeSymbol(".") || TakeSymbol("."));
  SkipToBoundary(head);
  return call;
}

DataStatement Parser::TakeData(DataStatement::Verb verb, const Token& head) {
  DataStatement data{verb, {head.At, 0}};
  SkipToBoundary(head);
  data.Text.End = last_.At + last_.Raw.size();
  return data;
}

/// Skips the rest of a statement whose first word is `head`. A word that could begin a statement
/// continues this one where the grammar asks for it.
void Parser::SkipToBoundary(const Token& head) {
  const bool isAlter = head.Is("ALTER");
  const bool isGrant = head.IsOneOf({"GRANT", "DENY", "REVOKE"});
  int parentheses = 0;
  int cases = 0;
  bool hasSource = !head.Is("INSERT");  // for INSERT: where its rows come from
  bool hasSet = !head.Is("UPDATE");
  bool hasAction = !isAlter;        // ALTER TABLE … ADD, DROP or ALTER
  bool hasMain = !head.Is("WITH");  // after common table expressions
  bool inGrantedList = isGrant;
  while (next_.Kind != TokenKind::End && !next_.IsSymbol(";")) {
    if (next_.IsSymbol("(")) {
      ++parentheses;
    } else if (next_.IsSymbol(")")) {
      if (--parentheses < 0) FailAt(next_);
    } else if (parentheses == 0 && next_.Kind == TokenKind::Word) {
      const Token& word = next_;
      if (word.Is("CASE")) {
        ++cases;
      } else if (word.Is("END") && cases > 0) {
        --cases;
      } else if (word.Is("ELSE") && cases > 0) {
      } else if (word.Is("VALUES") || word.Is("DEFAULT")) {
        hasSource = true;
      } else if (inGrantedList && (word.Is("ON") || word.Is("TO") || word.Is("FROM"))) {
        inGrantedList = false;
      } else if (!hasAction && word.Is("ADD")) {
        hasAction = true;
      } else if (IsBoundary(word) && !inGrantedList) {
        const bool goesOn =
            (word.Is("SELECT") &&
             (!hasSource || last_.IsOneOf({"UNION", "ALL", "EXCEPT", "INTERSECT", "AS"}))) ||
            (word.IsOneOf({"UPDATE", "DELETE"}) && last_.IsOneOf({"ON", "FOR"})) ||
            (word.Is("SET") && (!hasSet || last_.IsOneOf({"UPDATE", "DELETE"}))) ||
            (!hasAction && word.IsOneOf({"DROP", "ALTER"})) || (word.Is("IF") && head.Is("DROP")) ||
            (!hasMain && word.IsOneOf({"SELECT", "INSERT", "UPDATE", "DELETE"}));
        if (!goesOn) return;
        if (!hasMain) hasSet = !word.Is("UPDATE");
        if (!hasMain && word.Is("INSERT")) {
          hasSource = false;
        } else if (word.Is("SELECT")) {
          hasSource = true;
        }
        if (word.Is("SET")) hasSet = true;
        hasMain = hasAction = true;
      }
    }
    Take();
  }
}

}  // namespace talu::standin
