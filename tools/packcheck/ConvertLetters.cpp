#include "ConvertLetters.h"

#include <set>
#include <string>

#include "runtime/TextFunctions.h"
#include "runtime/Unicode.h"
#include "sql/Lexer.h"

namespace talu::packcheck {
namespace {

using sql::Token;
using sql::TokenKind;

/// A longer text put together from parts would be cut there by the server.
constexpr Position kLongest = 4000;
/// More parts may be more than the server's parser takes.
constexpr int kMostParts = 100;

/// The text of the token in parts; empty when there would be too many.
std::string InParts(const Token& token, const std::set<char32_t>& missing) {
  std::string parts;
  std::string plain;
  int count = 0;
  const auto add = [&](const std::string& part) {
    parts += (parts.empty() ? "" : " + ") + part;
    ++count;
  };
  const auto addPlain = [&] {
    if (!plain.empty()) add("N'" + plain + "'");
    plain.clear();
  };
  const std::string_view inside = token.Inside();
  for (std::size_t at = 0; at < inside.size();) {
    const std::size_t begin = at;
    const char32_t character = NextCharacter(inside, at);
    if (!missing.contains(character)) {
      plain += inside.substr(begin, at - begin);
      continue;
    }
    addPlain();
    // Half of a pair each: NCHAR takes no more than 65535 in most databases.
    std::u16string units(CountUtf16(inside.substr(begin, at - begin)), u'\0');
    WriteUtf16(inside.substr(begin, at - begin), units.data());
    for (const char16_t unit : units) add("NCHAR(" + std::to_string(unit) + ")");
  }
  addPlain();
  return count > kMostParts ? "" : parts;
}

}  // namespace

std::vector<Edit> LetterEdits(std::string_view text, const std::vector<MissingLetter>& missing) {
  std::set<char32_t> letters;
  for (const MissingLetter& letter : missing) letters.insert(letter.Character);
  std::vector<Edit> edits;
  bool inValues = false;
  int depth = 0;
  Token before;
  sql::Lexer lexer(text);
  for (Token token = lexer.Next(); token.Kind != TokenKind::End;
       before = token, token = lexer.Next()) {
    if (token.Is("VALUES")) {
      inValues = true;
      depth = 0;
    } else if (token.IsSymbol("(")) {
      ++depth;
    } else if (token.IsSymbol(")")) {
      --depth;
    } else if (depth == 0 && !token.IsSymbol(",")) {
      inValues = false;
    }
    const bool isText = token.Kind == TokenKind::String && token.Opening == 2 && token.IsClosed;
    if (!inValues || depth != 1 || !isText) continue;
    if (!before.IsSymbol("(") && !before.IsSymbol(",")) continue;
    sql::Lexer ahead = lexer;
    const Token next = ahead.Next();
    if (!next.IsSymbol(",") && !next.IsSymbol(")")) continue;
    if (IsAscii(token.Raw) || Length(token.Raw) > kLongest) continue;
    const std::string parts = InParts(token, letters);
    if (parts.empty() || parts == token.Raw) continue;
    edits.push_back({token.At, token.Raw.size(), parts, "NCHAR for letters"});
  }
  return edits;
}

}  // namespace talu::packcheck
