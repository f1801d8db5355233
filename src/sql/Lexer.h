#pragma once

#include <cstddef>
#include <initializer_list>
#include <string>
#include <string_view>

namespace talu::sql {

enum class TokenKind {
  End,
  Word,      ///< a keyword or a name without quotes
  Name,      ///< [name] or "name"
  String,    ///< 'text' or N'text'
  Number,    ///< 12, 1.5, 1e3
  Binary,    ///< 0x0AFF
  Variable,  ///< @name or @@name
  Comment,   ///< -- up to the line feed, or between its marks, which nest
  Symbol,
};

/// Whether a word or a name without quotes may contain the byte.
bool IsWordPart(char c);

struct Token {
  TokenKind Kind = TokenKind::End;
  /// False when the text ends before the closing quote, bracket or comment mark.
  bool IsClosed = true;
  /// The length of the opening mark: 2 for N'; 0 when an earlier piece began the token.
  unsigned char Opening = 0;
  /// The token as written in the text.
  std::string_view Raw;
  /// Where it begins in the text, in bytes.
  std::size_t At = 0;

  /// Whether it is this keyword, given in upper case. Names in brackets are never keywords.
  bool Is(std::string_view keyword) const;
  bool IsOneOf(std::initializer_list<std::string_view> keywords) const;
  bool IsSymbol(std::string_view symbol) const {
    return Kind == TokenKind::Symbol && Raw == symbol;
  }
  bool IsName() const { return Kind == TokenKind::Word || Kind == TokenKind::Name; }
  /// What is between the brackets or quotes of a name or a text, as written.
  std::string_view Inside() const {
    return Raw.substr(Opening, Raw.size() - Opening - (IsClosed ? 1 : 0));
  }
  /// The name without its brackets, or the text without its quotes; doubled ones become single.
  std::string Value() const;
};

/// What is still open at the end of a text: a text, a quoted name or a comment; End for nothing.
struct Unclosed {
  TokenKind Kind = TokenKind::End;
  char Mark = 0;          ///< what closes a text or a name
  std::size_t Depth = 0;  ///< comments within comments
};

/// Reads the tokens of T-SQL, one at a time. Accepts any text and raises nothing. To look ahead,
/// use a copy: it keeps its own position.
class Lexer {
 public:
  explicit Lexer(std::string_view text) : text_(text) {}
  /// The tokens of `text` from byte `at` up to byte `end`.
  Lexer(std::string_view text, std::size_t at, std::size_t end)
      : text_(text.substr(0, end)), at_(at) {}
  /// Continues what the piece before `text` left open; the first token is the rest of it.
  Lexer(std::string_view text, const Unclosed& open) : text_(text), open_(open) {}

  /// The next token, or End.
  Token NextOrComment();
  /// The next token, without closed comments.
  Token Next();
  /// What the tokens read so far leave open.
  const Unclosed& Open() const { return open_; }

 private:
  Token TakeOpen(std::size_t opening);
  bool SkipQuoted();
  bool SkipComment();
  void SkipNumber();
  template <class Accept>
  void SkipWhile(Accept accept);

  std::string_view text_;
  std::size_t at_ = 0;
  Unclosed open_;
};

}  // namespace talu::sql
