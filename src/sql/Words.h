#pragma once

#include <cstddef>
#include <string_view>

namespace talu::sql {

/// The words of a text, those in quotes and comments too: much faster than its tokens, to see
/// whether these are worth reading.
class Words {
 public:
  explicit Words(std::string_view text) : text_(text) {}

  /// The next word, which may be a number, or "$(" as it stands; empty at the end.
  std::string_view Next();
  /// What stands behind the last word.
  std::string_view Rest() const { return text_; }
  /// Passes over so many bytes of the rest.
  void Skip(std::size_t count) { text_.remove_prefix(count); }

 private:
  std::string_view text_;
};

}  // namespace talu::sql
