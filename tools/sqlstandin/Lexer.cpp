#include "Lexer.h"

#include <algorithm>

#include "Messages.h"

namespace talu::standin {

Token Lexer::Next() {
  const Token token = sql::Lexer::Next();
  if (token.IsClosed) return token;
  SqlFailure failure(token.Kind == TokenKind::Comment ? message::kUnclosedComment()
                                                      : message::kUnclosedQuote(token.Inside()),
                     true);
  failure.At = token.At;
  throw failure;
}

bool TakeIf(Lexer& lexer, std::string_view keyword) {
  if (!lexer.Peek().Is(keyword)) return false;
  lexer.Next();
  return true;
}

bool TakeSymbol(Lexer& lexer, std::string_view symbol) {
  if (!lexer.Peek().IsSymbol(symbol)) return false;
  lexer.Next();
  return true;
}

bool IsAmong(const Token& token, std::string_view words) {
  for (std::size_t at = 0; at < words.size();) {
    const std::size_t end = std::min(words.find(' ', at), words.size());
    if (token.Is(words.substr(at, end - at))) return true;
    at = end + 1;
  }
  return false;
}

}  // namespace talu::standin
