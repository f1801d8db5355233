#pragma once

#include <concepts>
#include <cstddef>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

namespace talu {

// Text functions of the run-time. Texts are UTF-8; positions and lengths count in units of UTF-16,
// positions from 1, and 0 means "not found"; a start below 1 or a negative length raises error 5.
// Comparison is binary.

/// A position or a length in a text.
using Position = std::ptrdiff_t;

inline constexpr std::string_view kCrLf = "\r\n";

/// The length of the text.
Position Length(std::string_view text);

/// Position of the first `find` at or after `start`; `start` itself for an empty `find`; 0 when not
/// found or `text` is empty. Raises 5.
Position InStr(Position start, std::string_view text, std::string_view find);
Position InStr(std::string_view text, std::string_view find);

/// A text that is not a literal.
template <class Text>
concept NoLiteral = std::convertible_to<Text, std::string_view> && !std::is_array_v<Text>;

/// What `Contains` looks for. For a literal the compiler chooses its rarest character in scripts,
/// which is searched first.
// NOLINTBEGIN(google-explicit-constructor): a text is meant
struct Sought {
  template <std::size_t Size>
  consteval Sought(const char (&text)[Size]) : Text(text, Size - 1) {
    constexpr std::string_view kCommonFirst = " ETAOINSRHLDCUMFPGWYBVKXJQZ";
    for (std::size_t at = 1; at < Text.size(); ++at) {
      if (kCommonFirst.find(Text[at]) > kCommonFirst.find(Text[Rarest])) Rarest = at;
    }
  }
  template <NoLiteral Found>
  Sought(const Found& text) : Text(text) {}

  std::string_view Text;
  std::size_t Rarest = 0;
};
// NOLINTEND(google-explicit-constructor)

/// Whether `find` occurs anywhere in `text`.
bool Contains(std::string_view text, Sought find);

/// Position of the last `find` that ends at or before `start`; 0 when there is none or `start` is
/// past the end. Raises 5.
Position InStrRev(std::string_view text, std::string_view find, Position start);
Position InStrRev(std::string_view text, std::string_view find);

/// The part from `start` on, at most `length` characters; empty past the end. Raises 5.
std::string Mid(std::string_view text, Position start, Position length);
std::string Mid(std::string_view text, Position start);

/// The first or last `length` characters, the whole text when it is shorter. Raises 5.
std::string Left(std::string_view text, Position length);
std::string Right(std::string_view text, Position length);

/// `text = text & CR LF & line`: the whole line or, when memory fails, nothing.
inline void AppendLine(std::string& text, std::string_view line) {
  text.reserve(text.size() + line.size() + 2);  // grows by more than requested
  text.push_back('\r');
  text.push_back('\n');
  text.append(line);
}

/// Without leading and trailing blanks; other white space stays.
inline std::string_view TrimView(std::string_view text) {
  while (text.starts_with(' ')) text.remove_prefix(1);
  while (text.ends_with(' ')) text.remove_suffix(1);
  return text;
}
std::string Trim(std::string_view text);

/// Upper case as the platform has it.
std::string UCase(std::string_view text);

/// Whether `text`, upper-cased, contains `upper` (ASCII, upper case already), without a copy.
bool ContainsUpper(std::string_view text, std::string_view upper);
/// Whether `text`, upper-cased, equals `upper` (ASCII, upper case already), without a copy.
bool EqualsUpper(std::string_view text, std::string_view upper);

/// The pieces between separators, empty ones too; no piece at all for an empty text.
std::vector<std::string> Split(std::string_view text, char separator);

/// Element `index` from 0. Raises 9 outside the array.
const std::string& Element(const std::vector<std::string>& array, std::ptrdiff_t index);

/// Replaces every `find`, from the left, without looking at what was inserted. An empty `find`
/// replaces nothing.
std::string Replace(std::string_view text, std::string_view find, std::string_view replacement);

/// The part of a path before its last backslash. Raises 5 when it has none.
std::string ParentPath(std::string_view path);

}  // namespace talu
