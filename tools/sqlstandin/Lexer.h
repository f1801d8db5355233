#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace talu::standin {

enum class TokenKind {
  End,
  Word,      ///< a keyword or a name without quotes
  Name,      ///< [name] or "name"
  String,    ///< 'text' or N'text'
  Number,    ///< 12, 1.5, 1e3
  Binary,    ///< 0x0AFF
  Variable,  ///< @name or @@name
  Symbol,
};

/// Whether a word or a name without quotes may hold the byte.
bool IsWordPart(char c);

struct Token {
  TokenKind Kind = TokenKind::End;
  /// The token as it stands in the batch.
  std::string_view Raw;
  /// Where it begins in the batch, in bytes.
  std::size_t At = 0;

  /// Whether it is this keyword, in any case. Names in brackets are never keywords.
  bool Is(std::string_view keyword) const;
  bool IsSymbol(std::string_view symbol) const {
    return Kind == TokenKind::Symbol && Raw == symbol;
  }
  bool IsName() const { return Kind == TokenKind::Word || Kind == TokenKind::Name; }
  /// The name without its brackets, or the text without its quotes.
  std::string Value() const;
};

/// Walks the tokens of a batch, one at a time; blanks and comments are passed over. Copying one
/// keeps the place, which is how to look ahead.
class Lexer {
 public:
  /// The tokens of `batch` from byte `at` up to byte `end`.
  Lexer(std::string_view batch, std::size_t at, std::size_t end);
  explicit Lexer(std::string_view batch) : Lexer(batch, 0, batch.size()) {}

  /// The next token, or End. Raises SqlFailure (105, 113) for an unclosed quote or comment.
  Token Next();
  /// The same without moving on.
  Token Peek() const { return Lexer(*this).Next(); }

 private:
  void SkipBlanks();
  std::size_t ClosingQuote(std::size_t from, char quote) const;

  std::string_view text_;
  std::size_t at_;
};

}  // namespace talu::standin
