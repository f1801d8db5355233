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
  Comment,   ///< -- up to the line feed, or between the marks, which nest
  Symbol,
};

/// Whether a word or a name without quotes may hold the byte.
bool IsWordPart(char c);

struct Token {
  TokenKind Kind = TokenKind::End;
  /// False where the text ends before the closing quote, bracket or comment mark.
  bool IsClosed = true;
  /// The length of what opens it: 2 for N'; 0 for what an earlier piece began.
  unsigned char Opening = 0;
  /// The token as it stands in the text.
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
  /// What stands between the brackets or quotes of a name or a text, as it is written.
  std::string_view Inside() const {
    return Raw.substr(Opening, Raw.size() - Opening - (IsClosed ? 1 : 0));
  }
  /// The name without its brackets, or the text without its quotes: doubled ones are single.
  std::string Value() const;
};

/// What a text ends in the middle of: a text, a quoted name or a comment; End for none.
struct Unclosed {
  TokenKind Kind = TokenKind::End;
  char Mark = 0;          ///< what closes a text or a name
  std::size_t Depth = 0;  ///< comments within comments
};

/// Walks the tokens of T-SQL, one at a time; it takes any text and raises nothing. Copying one
/// keeps the place, which is how to look ahead.
class Lexer {
 public:
  explicit Lexer(std::string_view text) : text_(text) {}
  /// The tokens of `text` from byte `at` up to byte `end`.
  Lexer(std::string_view text, std::size_t at, std::size_t end)
      : text_(text.substr(0, end)), at_(at) {}
  /// Goes on with what the piece in front of `text` ended in; the first token is the rest of it.
  Lexer(std::string_view text, const Unclosed& open) : text_(text), open_(open) {}

  /// The next token, or End.
  Token NextOrComment();
  /// The same, but comments that are closed are passed over.
  Token Next();
  /// What the tokens taken so far leave open.
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
