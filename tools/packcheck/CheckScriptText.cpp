#include "CheckScriptText.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <set>
#include <utility>

#include "ConvertText.h"
#include "runtime/TextFunctions.h"
#include "runtime/Unicode.h"

namespace talu::packcheck {
namespace {

constexpr std::size_t kLettersShown = 10;

/// The position of the first byte outside ASCII from `at` on; the size when there is none.
std::size_t FirstHighByte(std::string_view text, std::size_t at) {
  std::uint64_t eight = 0;
  for (; at + sizeof eight <= text.size(); at += sizeof eight) {
    std::memcpy(&eight, text.data() + at, sizeof eight);
    if ((eight & 0x8080808080808080U) != 0) break;
  }
  while (at < text.size() && static_cast<unsigned char>(text[at]) < 0x80) ++at;
  return at;
}

/// The length of the UTF-8 character outside ASCII at `at`; 0 when there is none.
std::size_t Utf8Length(std::string_view text, std::size_t at) {
  const auto lead = static_cast<unsigned char>(text[at]);
  if (lead < 0xC2 || lead > 0xF4) return 0;
  const std::size_t length = lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
  if (at + length > text.size()) return 0;
  for (std::size_t i = 1; i < length; ++i) {
    if ((static_cast<unsigned char>(text[at + i]) & 0xC0) != 0x80) return 0;
  }
  return length;
}

/// Whether the text is UTF-8 with letters outside ASCII; sets `line` to that of the first one.
bool IsUtf8(std::string_view text, int& line) {
  const std::size_t first = FirstHighByte(text, 0);
  for (std::size_t at = first; at < text.size(); at = FirstHighByte(text, at)) {
    const std::size_t length = Utf8Length(text, at);
    if (length == 0) return false;
    at += length;
  }
  if (first == text.size()) return false;
  line = 1 + static_cast<int>(std::ranges::count(text.substr(0, first), '\n'));
  return true;
}

std::string FromUtf16Bytes(std::string_view bytes) {
  bool bigEndian = bytes.starts_with("\xFE\xFF") || bytes.starts_with('\0');
  if (bytes.starts_with("\xFE\xFF") || bytes.starts_with("\xFF\xFE")) bytes.remove_prefix(2);
  std::u16string units;
  units.reserve(bytes.size() / 2);
  for (std::size_t at = 0; at + 1 < bytes.size(); at += 2) {
    const auto first = static_cast<unsigned char>(bytes[at]);
    const auto second = static_cast<unsigned char>(bytes[at + 1]);
    units += static_cast<char16_t>(bigEndian ? first << 8 | second : second << 8 | first);
  }
  return FromUtf16(std::u16string_view(units));
}

int LineOf(std::string_view text, std::size_t at) {
  return 1 + static_cast<int>(std::ranges::count(text.substr(0, at), '\n'));
}

/// Tells which letters would be lost when the text is saved in the machine's code page.
void CheckLetters(CheckedPack& pack, std::string_view text, const std::string& file) {
  const CodePage& codePage = pack.Machine.CodePage;
  std::set<char32_t> seen;
  std::string lacking;
  std::size_t count = 0;
  std::size_t firstAt = 0;
  char32_t first = 0;
  for (std::size_t at = FirstHighByte(text, 0); at < text.size(); at = FirstHighByte(text, at)) {
    const std::size_t start = at;
    const char32_t character = NextCharacter(text, at);
    if (!seen.insert(character).second) continue;
    const std::string letter(text.substr(start, at - start));
    if (codePage.ToText(codePage.FromText(letter)) == letter) continue;
    if (count++ == 0) {
      first = character;
      firstAt = start;
    }
    if (count <= kLettersShown) {
      lacking.append(count == 1 ? "" : " ").append(IsSeen(character) ? letter : CodeOf(character));
    }
  }
  if (count == 0) return;
  if (count > kLettersShown) lacking += " ...";
  pack.Findings.Add("SQL-LETTERS", {file, LineOf(text, firstAt), ""},
                    {lacking, std::to_string(static_cast<std::uint32_t>(first))});
}

}  // namespace

std::string MeantText(CheckedPack& pack, std::string bytes, const std::string& file) {
  std::string text;
  int line = 0;
  if (MarkOf(bytes).Utf16) {
    pack.Findings.Add("SQL-UTF16", {file, 0, ""});
    text = FromUtf16Bytes(bytes);
    CheckLetters(pack, text, file);
  } else if (!pack.IsUtf8 && IsUtf8(bytes, line)) {
    pack.Findings.Add("SQL-UTF8", {file, line, ""});
    text = MarkOf(bytes).Utf8 ? bytes.substr(3) : std::move(bytes);
    CheckLetters(pack, text, file);
  } else {
    text = pack.Machine.CodePage.ToText(std::move(bytes));
  }
  const std::vector<std::size_t> feeds = LoneFeeds(text, true);
  if (feeds.empty()) return text;
  const std::size_t feed = feeds.front();
  const std::size_t before = text.find_last_of("\r\n", feed == 0 ? 0 : feed - 1);
  const std::size_t start = feed == 0 || before == std::string::npos ? 0 : before + 1;
  pack.Findings.Add("SQL-LINE-ENDS", {file, LineOf(text, feed), text.substr(start, feed - start)});
  return WithReturns(text, feeds);
}

}  // namespace talu::packcheck
