#include "platform/simulated/CodePage.h"

#include <algorithm>
#include <array>

namespace talu {
namespace {

// Code page 1252, 0x80 to 0x9F, as Unicode. Source: the code page's published table (bestfit1252);
// its five undefined places map to the control characters of the same number.
constexpr std::array<char32_t, 32> kHigh = {
    0x20AC, 0x81,   0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x8D,   0x017D, 0x8F,   0x90,   0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x9D,   0x017E, 0x0178};

}  // namespace

char32_t UnicodeOf(char ansi) {
  const auto byte = static_cast<unsigned char>(ansi);
  return byte >= 0x80 && byte < 0xA0 ? kHigh[byte - 0x80] : byte;
}

void AppendUtf8(std::string& text, char32_t character) {
  if (character < 0x80) {
    text += static_cast<char>(character);
  } else if (character < 0x800) {
    text += static_cast<char>(0xC0 | (character >> 6));
    text += static_cast<char>(0x80 | (character & 0x3F));
  } else {
    text += static_cast<char>(0xE0 | (character >> 12));
    text += static_cast<char>(0x80 | ((character >> 6) & 0x3F));
    text += static_cast<char>(0x80 | (character & 0x3F));
  }
}

std::string Utf8FromAnsi(std::string_view text) {
  std::string utf8;
  utf8.reserve(text.size());
  const auto isAnsi = [](char character) { return static_cast<signed char>(character) < 0; };
  for (auto at = text.begin(); at != text.end();) {
    const auto end = std::find_if(at, text.end(), isAnsi);
    utf8.append(at, end);  // ASCII is the same in both
    if (end == text.end()) break;
    AppendUtf8(utf8, UnicodeOf(*end));
    at = end + 1;
  }
  return utf8;
}

std::string AnsiFromUtf8(std::string_view text) {
  std::string ansi;
  for (std::size_t at = 0; at < text.size();) {
    const auto lead = static_cast<unsigned char>(text[at]);
    const std::size_t length = lead < 0x80 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
    char found = '?';
    if (length == 1) found = text[at];
    for (int byte = 0x80; byte < 0x100 && length > 1; ++byte) {
      std::string candidate;
      AppendUtf8(candidate, UnicodeOf(static_cast<char>(byte)));
      if (text.substr(at, length) == candidate) found = static_cast<char>(byte);
    }
    ansi += found;
    at += length;
  }
  return ansi;
}

}  // namespace talu
