#include "sql/Lexer.h"

#include <algorithm>
#include <array>
#include <utility>

#include "runtime/TextFunctions.h"
#include "sql/Words.h"

namespace talu::sql {
namespace {

enum class Class : unsigned char { Sign, Blank, Digit, WordStart, WordInside };

constexpr std::array<Class, 256> MakeClasses() {
  std::array<Class, 256> classes{};
  for (std::size_t i = 1; i < classes.size(); ++i) {
    const bool letter = (i >= 'a' && i <= 'z') || (i >= 'A' && i <= 'Z');
    if (i <= ' ') classes[i] = Class::Blank;
    if (i >= '0' && i <= '9') classes[i] = Class::Digit;
    if (i == '@' || i == '$') classes[i] = Class::WordInside;
    if (letter || i >= 0x80 || i == '_' || i == '#') classes[i] = Class::WordStart;
  }
  return classes;
}

constexpr std::array<Class, 256> kClasses = MakeClasses();

Class ClassOf(char c) {
  return kClasses[static_cast<unsigned char>(c)];
}

bool IsDigit(char c) {
  return ClassOf(c) == Class::Digit;
}

bool IsHexDigit(char c) {
  return IsDigit(c) || (c >= 'A' && c <= 'F') || (c >= 'a' && c <= 'f');
}

}  // namespace

bool IsWordPart(char c) {
  return ClassOf(c) >= Class::Digit;
}

std::string_view Words::Next() {
  const char* at = text_.data();
  const char* const end = at + text_.size();
  while (at != end && ClassOf(*at) < Class::Digit) ++at;
  const char* const start = at;
  while (at != end && ClassOf(*at) >= Class::Digit) ++at;
  if (at != end && *at == '(' && at - start == 1 && *start == '$') ++at;
  text_ = {at, static_cast<std::size_t>(end - at)};
  return {start, static_cast<std::size_t>(at - start)};
}

bool Token::Is(std::string_view keyword) const {
  return Kind == TokenKind::Word && EqualsUpper(Raw, keyword);
}

bool Token::IsOneOf(std::initializer_list<std::string_view> keywords) const {
  return std::ranges::any_of(keywords, [this](std::string_view keyword) { return Is(keyword); });
}

std::string Token::Value() const {
  if (Kind != TokenKind::Name && Kind != TokenKind::String) return std::string(Raw);
  const char close = Kind == TokenKind::String ? '\'' : Raw.front() == '"' ? '"' : ']';
  const std::string_view inside = Inside();
  std::string value;
  value.reserve(inside.size());
  for (std::size_t at = 0; at < inside.size(); ++at) {
    value += inside[at];
    if (inside[at] == close) ++at;  // a doubled quote stands for one
  }
  return value;
}

template <class Accept>
void Lexer::SkipWhile(Accept accept) {
  while (at_ < text_.size() && accept(text_[at_])) ++at_;
}

Token Lexer::Next() {
  while (true) {
    const Token token = NextOrComment();
    if (token.Kind != TokenKind::Comment || !token.IsClosed) return token;
  }
}

Token Lexer::NextOrComment() {
  if (open_.Kind != TokenKind::End && at_ < text_.size()) return TakeOpen(0);
  SkipWhile([](char c) { return ClassOf(c) == Class::Blank; });
  const std::size_t start = at_;
  if (start >= text_.size()) return {TokenKind::End, true, 0, {}, text_.size()};
  const char c = text_[start];
  const char next = start + 1 < text_.size() ? text_[start + 1] : '\0';
  TokenKind kind = TokenKind::Symbol;
  if (c == '\'' || ((c == 'N' || c == 'n') && next == '\'')) {
    open_ = {TokenKind::String, '\''};
    return TakeOpen(c == '\'' ? 1 : 2);
  }
  switch (ClassOf(c)) {
    case Class::WordStart:
      kind = TokenKind::Word;
      SkipWhile(IsWordPart);
      break;
    case Class::WordInside:
      ++at_;
      if (c == '$') break;
      kind = TokenKind::Variable;
      SkipWhile(IsWordPart);
      break;
    case Class::Digit:
      kind = TokenKind::Number;
      if (c == '0' && (next == 'x' || next == 'X')) {
        kind = TokenKind::Binary;
        at_ += 2;
        SkipWhile(IsHexDigit);
      } else {
        SkipNumber();
      }
      break;
    default:
      if (c == '[' || c == '"') {
        open_ = {TokenKind::Name, c == '[' ? ']' : '"'};
        return TakeOpen(1);
      }
      if (c == '/' && next == '*') {
        open_ = {TokenKind::Comment, 0, 1};
        return TakeOpen(2);
      }
      if (c == '-' && next == '-') {
        kind = TokenKind::Comment;
        at_ = std::min(text_.find('\n', start), text_.size());
      } else if (c == '.' && IsDigit(next)) {
        kind = TokenKind::Number;
        SkipNumber();
      } else {
        const bool joined =
            (next == '=' && (c == '<' || c == '>' || c == '!')) || (c == '<' && next == '>');
        at_ += joined ? 2 : 1;
      }
  }
  return {kind, true, 0, text_.substr(start, at_ - start), start};
}

// Continues to the end of what is open, or of the text.
Token Lexer::TakeOpen(std::size_t opening) {
  const std::size_t start = std::exchange(at_, at_ + opening);
  const TokenKind kind = open_.Kind;
  const bool isClosed = kind == TokenKind::Comment ? SkipComment() : SkipQuoted();
  if (isClosed) {
    open_ = {};
  } else {
    at_ = text_.size();
  }
  return {kind, isClosed, static_cast<unsigned char>(opening), text_.substr(start, at_ - start),
          start};
}

bool Lexer::SkipQuoted() {
  for (std::size_t at = at_;; ++at) {
    at = text_.find(open_.Mark, at);
    if (at == std::string_view::npos) return false;
    at_ = ++at;
    if (at == text_.size() || text_[at] != open_.Mark) return true;
  }
}

bool Lexer::SkipComment() {
  while (open_.Depth > 0) {
    const std::size_t next = text_.find_first_of("*/", at_);
    if (next == std::string_view::npos) return false;
    const std::string_view mark = text_.substr(next, 2);
    if (mark == "/*") ++open_.Depth;
    if (mark == "*/") --open_.Depth;
    at_ = next + (mark == "/*" || mark == "*/" ? 2 : 1);
  }
  return true;
}

void Lexer::SkipNumber() {
  SkipWhile(IsDigit);
  if (at_ < text_.size() && text_[at_] == '.') {
    ++at_;
    SkipWhile(IsDigit);
  }
  if (at_ == text_.size() || (text_[at_] | 0x20) != 'e') return;
  std::size_t digits = at_ + 1;
  if (digits < text_.size() && (text_[digits] == '+' || text_[digits] == '-')) ++digits;
  if (digits == text_.size() || !IsDigit(text_[digits])) return;
  at_ = digits;
  SkipWhile(IsDigit);
}

}  // namespace talu::sql
