#include "Text.h"

#include <algorithm>
#include <clocale>
#include <cwctype>

namespace talu::standin {
namespace {

constexpr char32_t kReplacement = 0xFFFD;

void AppendUtf8(std::string& text, char32_t point) {
  const auto put = [&text](char32_t byte) { text.push_back(static_cast<char>(byte)); };
  if (point < 0x80) {
    put(point);
  } else if (point < 0x800) {
    put(0xC0 | (point >> 6));
    put(0x80 | (point & 0x3F));
  } else if (point < 0x10000) {
    put(0xE0 | (point >> 12));
    put(0x80 | ((point >> 6) & 0x3F));
    put(0x80 | (point & 0x3F));
  } else {
    put(0xF0 | (point >> 18));
    put(0x80 | ((point >> 12) & 0x3F));
    put(0x80 | ((point >> 6) & 0x3F));
    put(0x80 | (point & 0x3F));
  }
}

/// Reads the code point at `at` and advances past it.
char32_t NextPoint(std::string_view text, std::size_t& at) {
  const auto first = static_cast<unsigned char>(text[at++]);
  if (first < 0x80) return first;
  int more = 0;
  char32_t point = 0;
  if (first >= 0xC2 && first <= 0xDF) {
    more = 1;
    point = first & 0x1FU;
  } else if (first >= 0xE0 && first <= 0xEF) {
    more = 2;
    point = first & 0x0FU;
  } else if (first >= 0xF0 && first <= 0xF4) {
    more = 3;
    point = first & 0x07U;
  } else {
    return kReplacement;
  }
  std::size_t next = at;
  for (; more > 0; --more, ++next) {
    if (next >= text.size() || (static_cast<unsigned char>(text[next]) & 0xC0) != 0x80) {
      return kReplacement;
    }
    point = (point << 6) | (static_cast<unsigned char>(text[next]) & 0x3FU);
  }
  at = next;
  return point > 0x10FFFF ? kReplacement : point;
}

/// The letter tables of Unicode, independent of the process's locale.
locale_t UnicodeLocale() {
  static const locale_t kUnicode = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
  return kUnicode;
}

}  // namespace

std::string Utf8FromUtf16(std::string_view bytes) {
  const auto unit = [bytes](std::size_t at) {
    return static_cast<char32_t>(static_cast<unsigned char>(bytes[at]) |
                                 (static_cast<unsigned char>(bytes[at + 1]) << 8));
  };
  std::string text;
  text.reserve(bytes.size() / 2);
  for (std::size_t at = 0; at + 1 < bytes.size(); at += 2) {
    char32_t point = unit(at);
    if (point >= 0xD800 && point < 0xDC00 && at + 3 < bytes.size()) {
      const char32_t low = unit(at + 2);
      if (low >= 0xDC00 && low < 0xE000) {
        point = 0x10000 + ((point - 0xD800) << 10) + (low - 0xDC00);
        at += 2;
      }
    }
    AppendUtf8(text, point);
  }
  return text;
}

void AppendUtf16(std::string& bytes, std::string_view utf8) {
  const auto put = [&bytes](char32_t unit) {
    bytes.push_back(static_cast<char>(unit & 0xFF));
    bytes.push_back(static_cast<char>(unit >> 8));
  };
  for (std::size_t at = 0; at < utf8.size();) {
    const char32_t point = NextPoint(utf8, at);
    if (point < 0x10000) {
      put(point);
    } else {
      put(0xD800 + ((point - 0x10000) >> 10));
      put(0xDC00 + ((point - 0x10000) & 0x3FF));
    }
  }
}

std::string_view FirstUnits(std::string_view utf8, std::size_t most) {
  std::size_t end = 0;
  for (std::size_t at = 0; at < utf8.size(); end = at) {
    const std::size_t units = NextPoint(utf8, at) >= 0x10000 ? 2 : 1;
    if (units > most) break;
    most -= units;
  }
  return utf8.substr(0, end);
}

std::size_t CountUnits(std::string_view utf8) {
  std::size_t units = 0;
  for (std::size_t at = 0; at < utf8.size();) units += NextPoint(utf8, at) >= 0x10000 ? 2 : 1;
  return units;
}

std::string FoldName(std::string_view utf8) {
  std::string folded;
  folded.reserve(utf8.size());
  for (std::size_t at = 0; at < utf8.size();) {
    const char32_t point = NextPoint(utf8, at);
    const locale_t unicode = UnicodeLocale();
    AppendUtf8(folded, unicode == nullptr ? point
                                          : static_cast<char32_t>(
                                                towlower_l(static_cast<wint_t>(point), unicode)));
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
