#pragma once

#include "sql/Lexer.h"

namespace talu::standin {

using sql::Token;
using sql::TokenKind;

/// The tokens of a batch as the server reads them: no comments, and nothing left open.
class Lexer : private sql::Lexer {
 public:
  using sql::Lexer::Lexer;

  /// The next token, or End. Raises SqlFailure (105, 113) for an unclosed quote or comment.
  Token Next();
  /// The same without advancing.
  Token Peek() const { return Lexer(*this).Next(); }
};

}  // namespace talu::standin
