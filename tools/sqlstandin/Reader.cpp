#include "Reader.h"

#include <algorithm>

#include "Messages.h"
#include "Text.h"
#include "runtime/TextFunctions.h"
#include "runtime/Unicode.h"
#include "sql/Names.h"

namespace talu::standin {
namespace {

constexpr std::size_t kLongestName = 128;
/// Parentheses in parentheses. Newer versions of SQLite have no limit of their own.
constexpr int kDeepestParentheses = 1000;

/// Words of the language that are not reserved.
constexpr std::string_view kClauses =
    "APPLY CUBE FILESTREAM GENERATED INCLUDE MASKED OFFSET OUTPUT PATH PERCENT PERIOD RETURNS "
    "ROLLUP SYSTEM_VERSIONING TIES";

}  // namespace

std::string DataName(const std::string& schema, const std::string& name) {
  return schema.empty() || SameWord(schema, "dbo") ? name : schema + "." + name;
}

bool IsAmong(const Token& token, std::string_view words) {
  for (std::size_t at = 0; token.Kind == TokenKind::Word && at < words.size();) {
    const std::size_t end = std::min(words.find(' ', at), words.size());
    if (token.Is(words.substr(at, end - at))) return true;
    at = end + 1;
  }
  return false;
}

void FailNotKnown(const Token& token) {
  const bool isWord =
      token.Kind == TokenKind::Word && (sql::IsReserved(token.Raw) || IsAmong(token, kClauses));
  throw NotKnown(isWord || token.Kind == TokenKind::Symbol ? UCase(token.Raw) : std::string());
}

void Reader::FailAt(const Token& token) const {
  FailNotKnown(token);
}

void Reader::Read() {
  next_ = lexer_.Next();
  if (next_.IsClosed) return;
  const bool isComment = next_.Kind == TokenKind::Comment;
  SqlFailure failure(
      isComment ? message::kUnclosedComment() : message::kUnclosedQuote(next_.Inside()), true);
  failure.At = next_.At;
  throw failure;
}

Token Reader::Take() {
  last_ = next_;
  Read();
  if (next_.Kind != TokenKind::Symbol) return last_;
  if (static_cast<unsigned char>(next_.Raw.front()) < ' ') FailAt(next_);
  if (next_.Raw == ")") --parentheses_;
  if (next_.Raw == "(" && ++parentheses_ > kDeepestParentheses) {
    throw SqlFailure(message::kTooDeep(), true);
  }
  return last_;
}

bool Reader::TakeIf(std::string_view keyword) {
  const bool isThere = next_.Is(keyword);
  if (isThere) Take();
  return isThere;
}

bool Reader::TakeSymbol(std::string_view symbol) {
  const bool isThere = next_.IsSymbol(symbol);
  if (isThere) Take();
  return isThere;
}

void Reader::Expect(std::string_view keyword) {
  if (!TakeIf(keyword)) FailAt(next_);
}

void Reader::ExpectSymbol(std::string_view symbol) {
  if (!TakeSymbol(symbol)) FailAt(next_);
}

void Reader::ExpectEnd() {
  if (!IsAtEnd()) FailAt(next_);
}

bool Reader::TakeIfExists() {
  const bool isThere = TakeIf("IF");
  if (isThere) Expect("EXISTS");
  return isThere;
}

std::string Reader::TakeName() {
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

std::vector<std::string> Reader::TakeParts() {
  std::vector<std::string> parts{TakeName()};
  while (TakeSymbol(".")) parts.push_back(next_.IsSymbol(".") ? std::string() : TakeName());
  return parts;
}

std::string Reader::TakeObjectName() {
  const std::vector<std::string> parts = TakeParts();
  return DataName(parts.size() < 2 ? std::string() : parts[parts.size() - 2], parts.back());
}

std::vector<std::string> Reader::TakeNames() {
  std::vector<std::string> names;
  ExpectSymbol("(");
  do {
    names.push_back(TakeName());
    if (!TakeIf("ASC")) TakeIf("DESC");
  } while (TakeSymbol(","));
  ExpectSymbol(")");
  return names;
}

Range Reader::TakeGroup() {
  const Token open = next_;
  ExpectSymbol("(");
  for (int depth = 1; depth > 0; Take()) {
    if (IsAtEnd()) FailAt(open);
    if (next_.IsSymbol("(")) ++depth;
    if (next_.IsSymbol(")")) --depth;
  }
  return {open.At, At()};
}

}  // namespace talu::standin
