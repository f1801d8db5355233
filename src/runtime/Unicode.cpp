#include "runtime/Unicode.h"

#include <cstdint>
#include <cstring>

namespace talu {
namespace {

constexpr char32_t kReplacement = 0xFFFD;

unsigned char ByteAt(std::string_view text, std::size_t at) {
  return at < text.size() ? static_cast<unsigned char>(text[at]) : 0;
}

bool IsSurrogate(char32_t character) {
  return (character & 0xFFFFF800) == 0xD800;
}

/// The first half of a surrogate pair that `text` ends with; 0 without one.
char32_t FirstHalfAtEnd(std::string_view text) {
  if (text.size() < 3) return 0;
  std::size_t at = text.size() - 3;
  if (ByteAt(text, at) != 0xED || ByteAt(text, at + 1) < 0xA0 || ByteAt(text, at + 1) > 0xAF) {
    return 0;
  }
  return NextCharacter(text, at);
}

char Tail(char32_t bits) {
  return static_cast<char>(0x80 | (bits & 0x3F));
}

}  // namespace

bool IsAscii(std::string_view text) {
  constexpr std::uint64_t kHighBits = 0x8080808080808080;
  std::size_t at = 0;
  for (std::uint64_t words[4]; at + sizeof words <= text.size(); at += sizeof words) {
    std::memcpy(words, text.data() + at, sizeof words);
    if (((words[0] | words[1] | words[2] | words[3]) & kHighBits) != 0) return false;
  }
  unsigned bits = 0;
  for (; at < text.size(); ++at) bits |= static_cast<unsigned char>(text[at]);
  return bits < 0x80;
}

char32_t NextCharacter(std::string_view text, std::size_t& at) {
  const unsigned char lead = ByteAt(text, at++);
  if (lead < 0x80) return lead;
  const std::size_t tails = lead < 0xC2   ? 0
                            : lead < 0xE0 ? 1
                            : lead < 0xF0 ? 2
                            : lead < 0xF5 ? 3
                                          : 0;
  if (tails == 0) return kReplacement;
  char32_t character = lead & (0x3FU >> tails);
  for (std::size_t i = 0; i < tails; ++i) {
    const unsigned char tail = ByteAt(text, at + i);
    if ((tail & 0xC0) != 0x80) return kReplacement;
    character = character << 6 | (tail & 0x3F);
  }
  constexpr char32_t kLeast[] = {0, 0x80, 0x800, 0x10000};
  if (character < kLeast[tails] || character > 0x10FFFF) return kReplacement;
  at += tails;
  return character;
}

void AppendCharacter(std::string& text, char32_t character) {
  if (character < 0x80) {
    text += static_cast<char>(character);
    return;
  }
  if ((character & 0xFFFFFC00) == 0xDC00) {
    if (const char32_t first = FirstHalfAtEnd(text); first != 0) {
      text.resize(text.size() - 3);
      character = 0x10000 + ((first & 0x3FF) << 10) + (character & 0x3FF);
    }
  }
  if (character < 0x800) {
    text += static_cast<char>(0xC0 | (character >> 6));
  } else if (character < 0x10000) {
    text += static_cast<char>(0xE0 | (character >> 12));
    text += Tail(character >> 6);
  } else {
    text += static_cast<char>(0xF0 | (character >> 18));
    text += Tail(character >> 12);
    text += Tail(character >> 6);
  }
  text += Tail(character);
}

std::size_t CountUtf16(std::string_view text) {
  if (IsAscii(text)) return text.size();
  std::size_t units = 0;
  for (std::size_t at = 0; at < text.size();) units += NextCharacter(text, at) < 0x10000 ? 1 : 2;
  return units;
}

std::string OnlyCharacters(std::string_view text) {
  if (IsAscii(text)) return std::string(text);
  std::string characters;
  characters.reserve(text.size());
  for (std::size_t at = 0; at < text.size();) {
    const char32_t character = NextCharacter(text, at);
    AppendCharacter(characters, IsSurrogate(character) ? kReplacement : character);
  }
  return characters;
}

}  // namespace talu
