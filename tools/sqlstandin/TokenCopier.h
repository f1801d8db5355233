#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "Lexer.h"
#include "Rewriter.h"
#include "Text.h"

namespace talu::standin {

/// Copies tokens into SQLite's dialect: names, texts, TOP, CAST and CONVERT, text sums, functions.
class TokenCopier {
 public:
  TokenCopier(const Lexer& lexer, RewriteEnvironment& environment)
      : lexer_(lexer), environment_(environment) {}

  std::string CopyAll();

 private:
  /// What is special about the parentheses that are open.
  struct Frame {
    bool IsCast = false;
    /// Comes before the closing parenthesis: the LIMIT of a TOP, the AS of a CONVERT.
    std::string Closing;
    /// The arguments after the first are dropped: the style of a CONVERT.
    bool DropsRest = false;
    /// A text sum: from here on "+" joins texts.
    bool JoinsTexts = false;
  };

  void Put(std::string_view text);
  void CopyWord(const Token& token);
  void PutWord(const Token& token);
  void CopyFunction(const Token& token);
  void CopyNames(const Token& first);
  void CopySymbol(const Token& token);
  void CopyTop();
  void CopyConvert();
  void SkipToClosing();
  void PutSystemView(std::string_view name, std::string_view prefix);

  Lexer lexer_;
  RewriteEnvironment& environment_;
  std::string sql_;
  std::vector<Frame> frames_{1};
  Token last_;
};

/// Takes a group in parentheses from the lexer, which stands before it; the range has them too.
/// Raises 102 when it is not closed.
Range TakeGroup(Lexer& lexer);

}  // namespace talu::standin
