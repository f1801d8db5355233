#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace talu {

// Texts are UTF-8. A name on a Windows disk may hold one half of a surrogate pair; it is kept as
// the three bytes that it would have as a character, so that every name survives the way there and
// back.

/// Whether all bytes are below 0x80.
bool IsAscii(std::string_view text);

/// The character at `at`, and `at` moved behind it. A byte that begins no character is U+FFFD.
char32_t NextCharacter(std::string_view text, std::size_t& at);
/// Appends a character in UTF-8; half of a surrogate pair completes the half that `text` ends with.
void AppendCharacter(std::string& text, char32_t character);

/// How many units of UTF-16 the text has. What the wizard counts in texts is counted in them.
std::size_t CountUtf16(std::string_view text);

/// Writes the text in UTF-16, `CountUtf16` units, to `to`. `Unit` is char16_t, or wchar_t where it
/// has 16 bits.
template <class Unit>
void WriteUtf16(std::string_view text, Unit* to) {
  static_assert(sizeof(Unit) == 2);
  for (std::size_t at = 0; at < text.size();) {
    if (const auto byte = static_cast<unsigned char>(text[at]); byte < 0x80) {
      *to++ = static_cast<Unit>(byte);
      ++at;
      continue;
    }
    const char32_t character = NextCharacter(text, at);
    if (character >= 0x10000) {
      *to++ = static_cast<Unit>(0xD7C0 + (character >> 10));
      *to++ = static_cast<Unit>(0xDC00 + (character & 0x3FF));
    } else {
      *to++ = static_cast<Unit>(character);
    }
  }
}

/// UTF-16 to UTF-8.
template <class Unit>
std::string FromUtf16(std::basic_string_view<Unit> units) {
  static_assert(sizeof(Unit) == 2);
  std::string text;
  text.reserve(units.size());
  for (const Unit unit : units) {
    if (unit < 0x80) {
      text += static_cast<char>(unit);
    } else {
      AppendCharacter(text, static_cast<char16_t>(unit));
    }
  }
  return text;
}

/// Decodes bytes of a code page by `decode`, which takes a piece and appends it to a text. No piece
/// has a carriage return: one that follows the first byte of a longer character would be taken for
/// its second, and the line would not end.
template <class Decode>
std::string DecodePieces(std::string_view bytes, const Decode& decode) {
  std::string text;
  text.reserve(bytes.size() + bytes.size() / 2);
  for (;;) {
    const std::size_t end = bytes.find('\r');
    decode(bytes.substr(0, end), text);
    if (end == std::string_view::npos) return text;
    text += '\r';
    bytes.remove_prefix(end + 1);
  }
}

/// Without anything that is no character, which is replaced by U+FFFD.
std::string OnlyCharacters(std::string_view text);

}  // namespace talu
