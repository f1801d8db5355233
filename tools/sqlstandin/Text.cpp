#include "Text.h"

#include <algorithm>
#include <clocale>
#include <cwctype>

#include "runtime/Unicode.h"

namespace talu::standin {
namespace {

/// The letter tables of Unicode, independent of the process's locale.
locale_t UnicodeLocale() {
  static const locale_t kUnicode = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
  return kUnicode;
}

}  // namespace

std::string Utf8FromUtf16(std::string_view bytes) {
  std::string text;
  text.reserve(bytes.size() / 2);
  for (std::size_t at = 0; at + 1 < bytes.size(); at += 2) {
    AppendCharacter(text, static_cast<char32_t>(static_cast<unsigned char>(bytes[at]) |
                                                static_cast<unsigned char>(bytes[at + 1]) << 8));
  }
  return text;
}

void AppendUtf16(std::string& bytes, std::string_view utf8) {
  std::u16string units(CountUtf16(utf8), u'\0');
  WriteUtf16(utf8, units.data());
  for (const char16_t unit : units) {
    bytes.push_back(static_cast<char>(unit & 0xFF));
    bytes.push_back(static_cast<char>(unit >> 8));
  }
}

std::string_view FirstUnits(std::string_view utf8, std::size_t most) {
  std::size_t end = 0;
  for (std::size_t at = 0; at < utf8.size(); end = at) {
    const std::size_t units = NextCharacter(utf8, at) >= 0x10000 ? 2 : 1;
    if (units > most) break;
    most -= units;
  }
  return utf8.substr(0, end);
}

std::string FoldName(std::string_view utf8) {
  std::string folded;
  folded.reserve(utf8.size());
  for (std::size_t at = 0; at < utf8.size();) {
    const char32_t point = NextCharacter(utf8, at);
    const locale_t unicode = UnicodeLocale();
    AppendCharacter(folded, unicode == nullptr ? point
                                               : static_cast<char32_t>(towlower_l(
                                                     static_cast<wint_t>(point), unicode)));
  }
  return folded;
}

bool SameName(std::string_view left, std::string_view right) {
  return FoldName(left) == FoldName(right);
}

bool SameWord(std::string_view left, std::string_view right) {
  const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; };
  return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                    [&](char a, char b) { return lower(a) == lower(b); });
}

}  // namespace talu::standin
