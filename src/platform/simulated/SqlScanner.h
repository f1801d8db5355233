#pragma once

#include <array>
#include <cstddef>
#include <string_view>

namespace talu {

/// Whether names and keywords consist of such characters.
bool IsSqlWordCharacter(char character);

/// The words of a statement, one after the other with a look ahead: keywords and names, quoted
/// texts and names without their quotes but with the quote or bracket in front, single characters;
/// comments are left out.
class SqlScanner {
 public:
  explicit SqlScanner(std::string_view statement);

  /// The word `ahead` places after the current one, at most 3; empty past the end.
  std::string_view Word(std::size_t ahead = 0) const { return words_.at(ahead); }
  bool AtEnd() const { return Word().empty(); }
  void Advance();

 private:
  std::string_view Read();
  void SkipBlanksAndComments();
  std::string_view ReadQuoted(char quote);

  std::string_view statement_;
  std::size_t at_ = 0;
  std::array<std::string_view, 4> words_;
};

}  // namespace talu
