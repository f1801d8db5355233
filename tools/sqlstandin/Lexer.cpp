#include "Lexer.h"

#include "Messages.h"

namespace talu::standin {

Token Lexer::Next() {
  const Token token = sql::Lexer::Next();
  if (token.IsClosed) return token;
  throw SqlFailure(token.Kind == TokenKind::Comment ? message::UnclosedComment()
                                                    : message::UnclosedQuote(token.Inside()),
                   true);
}

}  // namespace talu::standin
