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

/// Reads the next token if it is this keyword, or this symbol.
bool TakeIf(Lexer& lexer, std::string_view keyword);
bool TakeSymbol(Lexer& lexer, std::string_view symbol);

/// Whether a token is one of the words, which are given in upper case with blanks between them.
bool IsAmong(const Token& token, std::string_view words);

}  // namespace talu::standin
