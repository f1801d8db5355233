#include <gtest/gtest.h>

#include "sql/Lexer.h"

namespace talu::sql {
namespace {

/// The tokens of the lines, each with its kind in front, and "..." behind what its line leaves
/// open.
std::string Tokens(std::initializer_list<std::string_view> lines) {
  constexpr std::string_view kKinds = "?WNSnBVCs";
  std::string told;
  Unclosed open;
  for (const std::string_view line : lines) {
    Lexer lexer(line, open);
    for (Token token = lexer.NextOrComment(); token.Kind != TokenKind::End;
         token = lexer.NextOrComment()) {
      EXPECT_EQ(token.Raw, line.substr(token.At, token.Raw.size()));
      told.append(told.empty() ? "" : " ")
          .append(1, kKinds.at(static_cast<std::size_t>(token.Kind)));
      told.append(1, ':').append(token.Raw).append(token.IsClosed ? "" : "...");
    }
    open = lexer.Open();
  }
  return told;
}

TEST(SqlLexer, TellsTextsNamesAndCommentsFromCode) {
  EXPECT_EQ(Tokens({"USE a1@#$\x80\t#t @v @@v $ x"}), "W:USE W:a1@#$\x80 W:#t V:@v V:@@v s:$ W:x");
  EXPECT_EQ(Tokens({"\x01n'a''b'[c]]d]\"e\"\"f\"N"}), "S:n'a''b' N:[c]]d] N:\"e\"\"f\" W:N");
  EXPECT_EQ(Tokens({"12.5e-3 .5 1e 2Sales 0xAFg"}),
            "n:12.5e-3 n:.5 n:1 W:e n:2 W:Sales B:0xAF W:g");
  EXPECT_EQ(Tokens({"a<=b<>-1/ *"}), "W:a s:<= W:b s:<> s:- n:1 s:/ s:*");
  EXPECT_EQ(Tokens({"/*/ /**/ '*/ -- b\r\nc"}), "C:/*/ /**/ '*/ C:-- b\r W:c");
  EXPECT_EQ(Tokens({""}), "");
}

TEST(SqlLexer, GoesOnWithWhatALineLeavesOpen) {
  EXPECT_EQ(Tokens({"/* /*", "", "*/ 'a", "*/'b", "c]'' ' [d", "]]", "]e"}),
            "C:/* /*... C:*/ 'a... C:*/ S:'b... S:c]'' ' N:[d... N:]]... N:] W:e");
}

TEST(SqlLexer, GivesNamesAndTextsWithoutTheirQuotes) {
  const std::pair<const char*, const char*> cases[] = {
      {"N'it''s'", "it's"}, {"[a]]\"b]", "a]\"b"}, {"\"\"", ""}, {"'open", "open"}, {"@x", "@x"}};
  for (const auto& [text, value] : cases) EXPECT_EQ(Lexer(text).Next().Value(), value);
}

}  // namespace
}  // namespace talu::sql
