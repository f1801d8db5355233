#include "Lexer.h"

#include <algorithm>

#include "Messages.h"
#include "Text.h"

namespace talu::standin {
namespace {

bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

bool IsWordStart(char c) {
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_' || c == '#' ||
         static_cast<unsigned char>(c) >= 0x80;
}

bool IsHexDigit(char c) {
  return IsDigit(c) || (c >= 'A' && c <= 'F') || (c >= 'a' && c <= 'f');
}

}  // namespace

bool IsWordPart(char c) {
  return IsWordStart(c) || IsDigit(c) || c == '@' || c == '$';
}

bool Token::Is(std::string_view keyword) const {
  return Kind == TokenKind::Word && SameWord(Raw, keyword);
}

std::string Token::Value() const {
  if (Kind != TokenKind::Name && Kind != TokenKind::String) return std::string(Raw);
  const std::size_t open = Raw.find_first_of("['\"");
  const char close = Raw[open] == '[' ? ']' : Raw[open];
  std::string value;
  value.reserve(Raw.size());
  for (std::size_t at = open + 1; at + 1 < Raw.size(); ++at) {
    value += Raw[at];
    if (Raw[at] == close) ++at;  // a doubled quote stands for one
  }
  return value;
}

Lexer::Lexer(std::string_view batch, std::size_t at, std::size_t end)
    : text_(batch.substr(0, end)), at_(at) {}

void Lexer::SkipBlanks() {
  while (at_ < text_.size()) {
    const char c = text_[at_];
    if (c == ' ' || (c >= '\t' && c <= '\r')) {
      ++at_;
    } else if (text_.substr(at_, 2) == "--") {
      at_ = std::min(text_.find('\n', at_), text_.size());
    } else if (text_.substr(at_, 2) == "/*") {
      // Comments nest.
      std::size_t depth = 0;
      do {
        const std::size_t next = text_.find_first_of("*/", at_);
        if (next == std::string_view::npos) throw SqlFailure(message::UnclosedComment(), true);
        const std::string_view mark = text_.substr(next, 2);
        at_ = next + (mark == "/*" || mark == "*/" ? 2 : 1);
        if (mark == "/*") ++depth;
        if (mark == "*/") --depth;
      } while (depth > 0);
    } else {
      return;
    }
  }
}

std::size_t Lexer::ClosingQuote(std::size_t from, char quote) const {
  for (std::size_t at = from;; at += 2) {
    at = text_.find(quote, at);
    if (at == std::string_view::npos) {
      throw SqlFailure(message::UnclosedQuote(text_.substr(from)), true);
    }
    if (at + 1 >= text_.size() || text_[at + 1] != quote) return at + 1;
  }
}

Token Lexer::Next() {
  SkipBlanks();
  const std::size_t start = at_;
  if (start >= text_.size()) return {TokenKind::End, text_.substr(text_.size()), text_.size()};
  const char c = text_[start];
  const char next = start + 1 < text_.size() ? text_[start + 1] : '\0';
  const auto skipWhile = [this](auto accept) {
    while (at_ < text_.size() && accept(text_[at_])) ++at_;
  };
  TokenKind kind = TokenKind::Symbol;
  if (c == '\'' || ((c == 'N' || c == 'n') && next == '\'')) {
    kind = TokenKind::String;
    at_ = ClosingQuote(start + (c == '\'' ? 1 : 2), '\'');
  } else if (c == '[' || c == '"') {
    kind = TokenKind::Name;
    at_ = ClosingQuote(start + 1, c == '[' ? ']' : '"');
  } else if (c == '@') {
    kind = TokenKind::Variable;
    skipWhile([](char part) { return IsWordPart(part); });
  } else if (IsWordStart(c)) {
    kind = TokenKind::Word;
    skipWhile([](char part) { return IsWordPart(part); });
  } else if (c == '0' && (next == 'x' || next == 'X')) {
    kind = TokenKind::Binary;
    at_ += 2;
    skipWhile(IsHexDigit);
  } else if (IsDigit(c) || (c == '.' && IsDigit(next))) {
    kind = TokenKind::Number;
    skipWhile(IsDigit);
    if (at_ < text_.size() && text_[at_] == '.') {
      ++at_;
      skipWhile(IsDigit);
    }
    if (at_ < text_.size() && (text_[at_] == 'e' || text_[at_] == 'E')) {
      std::size_t digits = at_ + 1;
      if (digits < text_.size() && (text_[digits] == '+' || text_[digits] == '-')) ++digits;
      if (digits < text_.size() && IsDigit(text_[digits])) {
        at_ = digits;
        skipWhile(IsDigit);
      }
    }
  } else {
    const std::string_view pair = text_.substr(start, 2);
    const bool joined = pair == "<>" || pair == "<=" || pair == ">=" || pair == "!=";
    at_ += joined ? 2 : 1;
  }
  return {kind, text_.substr(start, at_ - start), start};
}

}  // namespace talu::standin
