#include "ConvertText.h"

#include <algorithm>
#include <cstdio>
#include <map>
#include <set>
#include <stdexcept>

#include "CheckPack.h"
#include "ConvertEdits.h"
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

/// Makes every lone carriage return a CR LF, as which the build sends it, too. Returns how many.
std::size_t MendReturns(std::string& text) {
  std::vector<Edit> edits;
  for (std::size_t at = text.find('\r'); at < text.size(); at = text.find('\r', at + 1)) {
    if (text.compare(at, 2, kCrLf) != 0) edits.push_back({at, 1, std::string(kCrLf)});
  }
  if (!edits.empty()) text = Applied(text, edits);
  return edits.size();
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

std::vector<std::size_t> LoneFeeds(std::string_view text, bool isScript) {
  std::vector<std::size_t> feeds;
  for (std::size_t at = text.find('\n'); at < text.size(); at = text.find('\n', at + 1)) {
    if (at == 0 || text[at - 1] != '\r') feeds.push_back(at);
  }
  if (!isScript || feeds.empty()) return feeds;
  std::vector<std::size_t> ending;
  auto feed = feeds.begin();
  sql::Lexer lexer(text);
  for (sql::Token token = lexer.Next(); token.Kind != sql::TokenKind::End; token = lexer.Next()) {
    if (token.Kind != sql::TokenKind::String && token.Kind != sql::TokenKind::Name) continue;
    if (!token.IsClosed) return feeds;  // who knows what is a text, then
    const auto begin = std::lower_bound(feed, feeds.end(), token.At);
    ending.insert(ending.end(), feed, begin);
    feed = std::lower_bound(begin, feeds.end(), token.At + token.Raw.size());
  }
  ending.insert(ending.end(), feed, feeds.end());
  return ending;
}

std::string WithReturns(std::string_view text, const std::vector<std::size_t>& feeds) {
  std::string with;
  with.reserve(text.size() + feeds.size());
  std::size_t copied = 0;
  for (const std::size_t feed : feeds) {
    with.append(text.substr(copied, feed - copied)).append(1, '\r');
    copied = feed;
  }
  return with.append(text.substr(copied));
}

DecodedText Decode(std::string_view bytes, const CodePage& codePage, int number, bool isScript) {
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
  decoded.OtherLineEnds = MendReturns(decoded.Text);
  const std::vector<std::size_t> feeds = LoneFeeds(decoded.Text, isScript);
  decoded.OtherLineEnds += feeds.size();
  if (!feeds.empty()) decoded.Text = WithReturns(decoded.Text, feeds);
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
