#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "Reader.h"
#include "Rewriter.h"
#include "Text.h"

namespace talu::standin {

/// Copies tokens into SQLite's dialect: names, texts, TOP, CAST and CONVERT, text sums, functions.
class TokenCopier {
 public:
  TokenCopier(const Reader& reader, RewriteEnvironment& environment)
      : reader_(reader), environment_(environment) {}

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
  void CopyNames(const Token& first);
  void CopySymbol(const Token& token);
  void CopyTop();
  void CopyConvert();
  std::string_view TakeCastType();

  Reader reader_;
  RewriteEnvironment& environment_;
  std::string sql_{" "};
  std::vector<Frame> frames_{1};
  Token last_;
};

}  // namespace talu::standin
