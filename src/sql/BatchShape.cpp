#include "sql/BatchShape.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <utility>

#include "runtime/TextFunctions.h"

namespace talu::sql {

// clang-format off
enum class BatchShape::Word {
  None, Alter, Begin, Case, Create, Delete, Drop, Else, End, Exec, For, Function, Other, If,
  Insert, Into, Maker, Merge, On, Or, Output, Procedure, Rights, Schema, Select, Set, Table,
  To, Transaction, Trigger, Union, Update, Values, View, While
};
// clang-format on

// Most words of a batch are none of these; length and first letter show it.
BatchShape::Word BatchShape::Known(const Token& token) {
  struct Entry {
    std::string_view Upper;
    Word Is;
  };
  using enum Word;
  // clang-format off
  static constexpr Entry kWords[] = {
    {"ALL", Union}, {"ALTER", Alter}, {"BACKUP", Set}, {"BEGIN", Begin}, {"BREAK", Set},
    {"CASE", Case}, {"CHECKPOINT", Set}, {"CLOSE", Set}, {"COMMIT", Set}, {"CONTINUE", Set},
    {"CREATE", Create}, {"DBCC", Set}, {"DEALLOCATE", Set}, {"DECLARE", Set}, {"DELETE", Delete},
    {"DENY", Rights}, {"DROP", Drop}, {"ELSE", Else}, {"END", End}, {"EXCEPT", Union},
    {"EXEC", Exec}, {"EXECUTE", Exec}, {"FETCH", Set}, {"FOR", For}, {"FROM", To},
    {"FUNCTION", Function}, {"GOTO", Set}, {"GRANT", Rights}, {"IF", If}, {"INSERT", Insert},
    {"INTERSECT", Union}, {"INTO", Into}, {"KILL", Set}, {"MERGE", Merge}, {"ON", On}, {"OPEN", Set}, {"OR", Or}, {"OUTPUT", Output}, {"PRINT", Set}, {"PROC", Procedure},
    {"PROCEDURE", Procedure}, {"RAISERROR", Set}, {"RECONFIGURE", Set}, {"RESTORE", Set},
    {"RETURN", Set}, {"REVOKE", Rights}, {"ROLLBACK", Set}, {"SAVE", Set}, {"SCHEMA", Schema},
    {"SELECT", Select}, {"SET", Set}, {"SP_ADDLOGIN", Maker}, {"SP_ATTACH_DB", Maker},
    {"SP_GRANTLOGIN", Maker}, {"TABLE", Table}, {"THROW", Set},
    {"TO", To}, {"TRAN", Transaction}, {"TRANSACTION", Transaction}, {"TRIGGER", Trigger},
    {"TRUNCATE", Other}, {"UNION", Union}, {"UPDATE", Update}, {"USE", Set}, {"VALUES", Values},
    {"VIEW", View}, {"WAITFOR", Set}, {"WHILE", While}};
  // clang-format on
  static constexpr auto kBegins = [] {
    std::array<unsigned char, 27> begins{};
    std::size_t at = 0;
    for (std::size_t letter = 0; letter < begins.size(); ++letter) {
      while (at < std::size(kWords) && kWords[at].Upper[0] < static_cast<char>('A' + letter)) ++at;
      begins[letter] = static_cast<unsigned char>(at);
    }
    return begins;
  }();
  const auto letter = static_cast<std::size_t>((token.Raw[0] | 0x20) - 'a');
  if (token.Kind != TokenKind::Word || letter >= 26) return Word::None;
  for (std::size_t at = kBegins[letter]; at < kBegins[letter + 1]; ++at) {
    const Entry& entry = kWords[at];
    if (entry.Upper.size() == token.Raw.size() && EqualsUpper(token.Raw, entry.Upper)) {
      return entry.Is;
    }
  }
  return Word::None;
}

bool BatchShape::InRows() const {
  return open_ == Word::Insert || open_ == Word::Update;
}

void BatchShape::Clear() {
  *this = {};
}

BatchShape::Condition BatchShape::Conditional() const {
  if (isBody_) return Condition::Body;
  return conditional_ ? Condition::If : Condition::None;
}

void BatchShape::Follow(const Token& token, int line) {
  line_ = line;
  ++sinceDrop_;
  if (naming_.Line != 0) TakeObjectName(token);
  // Otherwise it is a column's name.
  const bool outputs = std::exchange(mayOutput_, false) &&
                       (token.IsOneOf({"INSERTED", "DELETED"}) || token.IsSymbol("$"));
  if (outputs) hasRows_ = true;
  if (token.Kind == TokenKind::Symbol) {
    TakeSymbol(token.Raw[0]);
    return;
  }
  const Word word = Known(token);
  TakeWord(word, token);
  hasCode_ = true;
  // SELECT @x = ... returns nothing.
  mayAssign_ = token.Kind == TokenKind::Variable && open_ == Word::Select && depth_ == 0;
  previous_ = word;
}

void BatchShape::TakeSymbol(char symbol) {
  if (symbol == '(') ++depth_;
  if (symbol == ')') depth_ = std::max(depth_ - 1, 0);
  if (symbol == ';' && depth_ == 0) {
    Commit();
    inRights_ = false;
  } else {
    hasCode_ = true;
  }
  if (symbol == '=' && mayAssign_) hasRows_ = false;
  mayAssign_ = false;
  previous_ = Word::None;
}

void BatchShape::TakeWord(Word word, const Token& token) {
  if (word == Word::None || depth_ > 0) return;
  switch (word) {
    case Word::Case:
      ++cases_;
      return;
    case Word::If:
    case Word::While:
      // DROP TABLE IF EXISTS is no condition.
      pending_ = pending_ || word == Word::While || sinceDrop_ != 2;
      return;
    case Word::Else:
      if (cases_ == 0) pending_ = true;
      return;
    case Word::Begin:
      blocks_.push_back(std::exchange(pending_, false));
      return;
    case Word::Transaction:
      if (previous_ == Word::Begin && !blocks_.empty()) blocks_.pop_back();
      return;
    case Word::End:
      if (cases_ > 0) {
        --cases_;
      } else if (!blocks_.empty()) {
        blocks_.pop_back();
      }
      return;
    case Word::To:
      inRights_ = false;
      return;
    case Word::Maker:
      makers_.push_back({line_, token.Raw});
      return;
    case Word::Procedure:
    case Word::Function:
    case Word::Trigger:
    case Word::View:
    case Word::Schema:
    case Word::Table:
      TakeKind(word, token);
      return;
    default:
      if (!isBody_) TakeResultWord(word);
  }
}

void BatchShape::TakeKind(Word word, const Token& token) {
  const bool created = previous_ == Word::Create;
  if (inRights_ || !(created || previous_ == Word::Alter)) return;
  if (word == Word::Schema ? created : word != Word::Table) {
    if (verbFirst_) {
      isBody_ = word != Word::Schema;
      inSchema_ = inSchema_ || word == Word::Schema;
    } else if (!(inSchema_ && word == Word::View)) {
      notFirst_.push_back({line_, token.Raw});
      isBody_ = true;
    }
    verbFirst_ = false;
  }
  if (word != Word::Schema && word != Word::Trigger && object_.Line == 0) {
    naming_ = {line_, token.Raw};
    points_ = 0;
    wantsName_ = true;
  }
}

// CREATE TABLE a.b.c is in the database a.
void BatchShape::TakeObjectName(const Token& token) {
  if (token.IsSymbol(".")) {
    ++points_;
    wantsName_ = true;
  } else if (wantsName_ && token.IsName()) {
    wantsName_ = false;
    isTemporary_ = isTemporary_ || token.Value().starts_with('#');
  } else {
    if (points_ < 2 && !isTemporary_) object_ = naming_;
    naming_ = {};
    isTemporary_ = false;
  }
}

void BatchShape::TakeResultWord(Word word) {
  switch (word) {
    case Word::Create:
    case Word::Alter:
      // CREATE OR ALTER; GRANT CREATE VIEW
      if (previous_ != Word::Or && !inRights_) {
        verbFirst_ = !hasCode_;
        Begin(word);
      }
      return;
    case Word::Select:
      if (open_ == Word::Insert && !insertHasSource_) {
        insertHasSource_ = true;
        return;
      }
      if (inRights_ || open_ == Word::Merge || previous_ == Word::Union || previous_ == Word::For) {
        return;
      }
      Begin(word);
      hasRows_ = true;
      return;
    case Word::Into:
      hasRows_ = false;
      return;
    case Word::Output:
      // That of INSERT T EXEC P @x OUTPUT is an argument.
      mayOutput_ = open_ == Word::Update || open_ == Word::Delete || open_ == Word::Merge ||
                   (open_ == Word::Insert && !insertHasSource_);
      return;
    case Word::Insert:
    case Word::Update:
    case Word::Delete:
    case Word::Merge:
      if (inRights_ || open_ == Word::Merge || previous_ == Word::On || previous_ == Word::For) {
        return;
      }
      Begin(word);
      insertHasSource_ = false;
      return;
    case Word::Values:
      insertHasSource_ = true;
      return;
    case Word::Exec:
      if (inRights_) return;
      hasCall_ = true;
      if (open_ == Word::Insert && !insertHasSource_) {
        insertHasSource_ = true;
        return;
      }
      Begin(word);
      return;
    case Word::Rights:
      Begin(word);
      inRights_ = true;
      return;
    case Word::Drop:
      sinceDrop_ = 0;
      Begin(word);
      return;
    case Word::Other:
      Begin(word);
      return;
    case Word::Set:
      conditional_ = std::exchange(pending_, false);
      return;
    default:
      return;
  }
}

// A statement that can fail begins.
void BatchShape::Begin(Word word) {
  Commit();
  if (result_.Line != 0 && result_.UnseenLine == 0) result_.UnseenLine = line_;
  conditional_ =
      std::exchange(pending_, false) || std::ranges::find(blocks_, true) != blocks_.end();
  inRights_ = false;
  open_ = word;
  openLine_ = line_;
}

// The statement that was being read is whole.
void BatchShape::Commit() {
  if (result_.Line == 0 && hasRows_) result_ = {openLine_, 0};
  open_ = Word::None;
  hasRows_ = false;
}

}  // namespace talu::sql
