#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace talu {

/// A growing list of names in one text, each behind a comma, that is asked for parts of itself. A
/// long script can put a name in it with every line, so the question must not cost a walk through
/// the whole list.
class NameList {
 public:
  const std::string& Text() const { return text_; }
  /// Whether `part` occurs anywhere in the text; an empty part does in any text but the empty one.
  bool Contains(std::string_view part) const;
  /// Appends "," and the name.
  void Append(std::string_view name);

 private:
  static std::uint32_t PieceAt(std::string_view text, std::size_t at);

  std::string text_;
  /// Where each piece of four characters begins in the text.
  std::unordered_map<std::uint32_t, std::vector<std::uint32_t>> places_;
  std::size_t indexed_ = 0;
};

}  // namespace talu
