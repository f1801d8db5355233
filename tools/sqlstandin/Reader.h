#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "sql/Lexer.h"

namespace talu::standin {

using sql::Token;
using sql::TokenKind;

/// A part of the batch, in bytes.
struct Range {
  std::size_t Begin = 0;
  std::size_t End = 0;
};

/// Reads the tokens of a batch, one of them ahead; to look further, use a copy. Where something
/// else stands than is expected it calls FailAt, which raises NotKnown unless a class that reads
/// knows better.
class Reader {
 public:
  /// Raises SqlFailure (105, 113) for an unclosed quote or comment, as Take does.
  explicit Reader(std::string_view text) : Reader(text, {0, text.size()}) {}
  Reader(std::string_view text, Range range) : lexer_(text, range.Begin, range.End) { Read(); }
  Reader(const Reader&) = default;
  Reader& operator=(const Reader&) = default;
  virtual ~Reader() = default;

  const Token& Next() const { return next_; }
  const Token& Last() const { return last_; }
  bool IsAtEnd() const { return next_.Kind == TokenKind::End; }
  /// Where the last token ends.
  std::size_t At() const { return last_.At + last_.Raw.size(); }

  Token Take();
  /// These read the next token if it is this keyword, or this symbol.
  bool TakeIf(std::string_view keyword);
  bool TakeSymbol(std::string_view symbol);
  void Expect(std::string_view keyword);
  void ExpectSymbol(std::string_view symbol);
  void ExpectEnd();
  /// IF EXISTS, if it is there.
  bool TakeIfExists();

  std::string TakeName();
  /// The parts of a name with dots; one that is left out is empty.
  std::vector<std::string> TakeParts();
  /// A name of one part or more, as DataName gives it.
  std::string TakeObjectName();
  /// Columns in parentheses.
  std::vector<std::string> TakeNames();
  /// A group in parentheses; the range includes them.
  Range TakeGroup();

 protected:
  [[noreturn]] virtual void FailAt(const Token& token) const;

 private:
  void Read();

  sql::Lexer lexer_;
  Token next_;
  Token last_;
  int parentheses_ = 0;
};

/// The name of a table, or of whatever else, in SQLite: there is no schema before those of dbo.
std::string DataName(const std::string& schema, const std::string& name);

/// Whether a token is one of the words, which are given in upper case with blanks between them.
bool IsAmong(const Token& token, std::string_view words);

/// Raises NotKnown with the token, if it is a word or a sign of the language.
[[noreturn]] void FailNotKnown(const Token& token);

}  // namespace talu::standin
