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
  /// What is special about the open parentheses.
  struct Frame {
    bool IsCast = false;
    /// Inserted before the closing parenthesis: the LIMIT of a TOP, the AS of a CONVERT.
    std::string Closing;
    /// The arguments after the first are dropped, such as the style of a CONVERT.
    bool DropsRest = false;
    /// A text sum: from now on "+" joins texts.
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
  std::string sql_{" "};
  std::vector<Frame> frames_{1};
  Token last_;
};

/// Reads a group in parentheses, at which the lexer is; the range includes them. Raises 102 when it
/// is not closed.
Range TakeGroup(Lexer& lexer);

}  // namespace talu::standin
