#pragma once

#include <cstddef>
#include <iosfwd>
#include <string>
#include <string_view>
#include <vector>

namespace talu::packcheck {

/// One change to a text: `Length` bytes from `At` on become `New`.
struct Edit {
  std::size_t At = 0;
  std::size_t Length = 0;
  std::string New;
  /// What it brings about, as told to the author: "the last GO".
  const char* What = "";
};

/// The text with its edits, which are in order and do not overlap.
std::string Applied(std::string_view text, const std::vector<Edit>& edits);

/// Writes what the edits change in a text whose lines end in CR LF, or in a line feed within texts,
/// as a unified diff without its two lines about the files. Passwords are hidden.
void WriteDiff(std::string_view text, const std::vector<Edit>& edits, std::ostream& out);

}  // namespace talu::packcheck
