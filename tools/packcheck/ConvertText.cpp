#include "ConvertText.h"

#include <algorithm>
#include <cstdio>
#include <map>
#include <set>
#include <stdexcept>

#include "CheckPack.h"
#include "runtime/TextFunctions.h"
#include "runtime/Unicode.h"
#include "sql/Lexer.h"

namespace talu::packcheck {
namespace {

constexpr int kUtf8 = 65001;
/// The byte-order mark in UTF-8.
constexpr std::string_view kMark = "\xEF\xBB\xBF";

std::string FromUtf16Bytes(std::string_view bytes) {
  if (bytes.size() % 2 != 0) {
    throw std::runtime_error("it begins as UTF-16 but has an odd number of bytes");
  }
  const bool bigEndian = bytes.starts_with("\xFE\xFF") || bytes.front() == '\0';
  std::u16string units(bytes.size() / 2, u'\0');
  for (std::size_t i = 0; i < units.size(); ++i) {
    const auto first = static_cast<unsigned char>(bytes[2 * i]);
    const auto second = static_cast<unsigned char>(bytes[2 * i + 1]);
    units[i] = static_cast<char16_t>(bigEndian ? first << 8 | second : second << 8 | first);
  }
  return FromUtf16<char16_t>(units);
}

std::string FromCodePage(std::string_view bytes, const CodePage& codePage, int number) {
  std::string text = codePage.ToText(std::string(bytes));
  // What is replaced on the way does not come back: it may be a text of another code page.
  if (codePage.FromText(text) != bytes) {
    throw std::runtime_error("it has bytes that are no letters of code page " +
                             std::to_string(number) + " (--code-page names another)");
  }
  return text;
}

void EndLinesInCrLf(DecodedText& decoded) {
  const std::string& text = decoded.Text;
  std::string result;
  std::size_t copied = 0;
  for (std::size_t at = text.find_first_of(kCrLf); at != std::string::npos;
       at = text.find_first_of(kCrLf, at)) {
    const std::size_t length = text.compare(at, 2, kCrLf) == 0 ? 2 : 1;
    if (length == 1) {
      ++decoded.OtherLineEnds;
      result.append(text, copied, at - copied).append(kCrLf);
      copied = at + 1;
    }
    at += length;
  }
  if (decoded.OtherLineEnds > 0) decoded.Text = result.append(text, copied);
}

bool Lacks(const CodePage& codePage, const std::string& letter) {
  return codePage.ToText(codePage.FromText(letter)) != letter;
}

/// Tells which positions of a text are in comments; they have to be asked for in their order.
class Comments {
 public:
  explicit Comments(std::string_view text) : lexer_(text) {}

  bool Contain(std::size_t at) {
    while (token_.At + token_.Raw.size() <= at && (!begun_ || token_.Kind != sql::TokenKind::End)) {
      begun_ = true;
      token_ = lexer_.NextOrComment();
    }
    return token_.Kind == sql::TokenKind::Comment && token_.At <= at;
  }

 private:
  sql::Lexer lexer_;
  sql::Token token_;
  bool begun_ = false;
};

}  // namespace

DecodedText Decode(std::string_view bytes, const CodePage& codePage, int number) {
  DecodedText decoded;
  const TextMark mark = MarkOf(bytes);
  if (mark.Utf16) {
    decoded.Encoding = "UTF-16";
    decoded.Text = FromUtf16Bytes(bytes);
  } else if (mark.Utf8 || number == kUtf8 || (!IsAscii(bytes) && OnlyCharacters(bytes) == bytes)) {
    if (mark.Utf8 || number != kUtf8) decoded.Encoding = "UTF-8";
    decoded.Text = bytes.substr(mark.Utf8 ? 3 : 0);
    if (OnlyCharacters(decoded.Text) != decoded.Text) {
      throw std::runtime_error("it has bytes that are not UTF-8");
    }
  } else {
    decoded.Text = FromCodePage(bytes, codePage, number);
  }
  // Some tools write the mark although it is there already.
  while (!decoded.Encoding.empty() && decoded.Text.starts_with(kMark)) {
    decoded.Text.erase(0, kMark.size());
  }
  if (decoded.Text.find('\0') != std::string::npos) {
    throw std::runtime_error("it has NUL characters, so it is no text");
  }
  EndLinesInCrLf(decoded);
  return decoded;
}

bool IsSeen(char32_t character) {
  return character != 0xFEFF && character != 0xAD && (character < 0x200B || character > 0x200F) &&
         (character < 0x2028 || character > 0x202E);
}

std::string CodeOf(char32_t character) {
  char code[16];
  std::snprintf(code, sizeof code, "U+%04X", static_cast<unsigned>(character));
  return code;
}

std::vector<MissingLetter> MissingLetters(std::string_view text, const CodePage& codePage) {
  std::vector<MissingLetter> missing;
  std::map<char32_t, std::size_t> known;  // the index in `missing`; its size for one that is there
  constexpr std::size_t kThere = static_cast<std::size_t>(-1);
  Comments comments(text);
  int line = 1;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t begin = at;
    if (static_cast<unsigned char>(text[at]) < 0x80) {
      if (text[at++] == '\n') ++line;
      continue;
    }
    const char32_t character = NextCharacter(text, at);
    const auto [found, isNew] = known.try_emplace(character, kThere);
    if (isNew) {
      const std::string letter(text.substr(begin, at - begin));
      if (Lacks(codePage, letter)) {
        found->second = missing.size();
        missing.push_back({letter, character, {}, 0});
      }
    }
    if (found->second == kThere) continue;
    MissingLetter& letter = missing[found->second];
    if (comments.Contain(begin)) {
      ++letter.InComments;
    } else if (letter.Lines.empty() || letter.Lines.back() != line) {
      letter.Lines.push_back(line);
    }
  }
  return missing;
}

std::vector<int> CodePagesFor(std::string_view text) {
  std::set<char32_t> letters;
  for (std::size_t at = 0; at < text.size();) {
    if (const char32_t letter = NextCharacter(text, at); letter >= 0x80) letters.insert(letter);
  }
  std::string all;
  for (const char32_t letter : letters) AppendCharacter(all, letter);
  std::vector<int> fitting;
  for (const int number :
       {1250, 1251, 1252, 1253, 1254, 1255, 1256, 1257, 1258, 874, 932, 936, 949, 950}) {
    try {
      if (!Lacks(CodePage(number), all)) fitting.push_back(number);
    } catch (const std::runtime_error&) {  // this system does not know it
    }
  }
  return fitting;
}

}  // namespace talu::packcheck
