#include <gtest/gtest.h>

#include "platform/win32/TextLayout.h"

namespace talu {
namespace {

/// A device context with a font whose characters are all equally wide.
class TextLayoutTest : public testing::Test {
 protected:
  TextLayoutTest() {
    font_ = CreateFontA(-12, 0, 0, 0, FW_NORMAL, 0, 0, 0, DEFAULT_CHARSET, 0, 0, 0,
                        FIXED_PITCH | FF_MODERN, "Liberation Mono");
    SelectObject(dc_, font_);
    SIZE size;
    GetTextExtentPoint32W(dc_, L"0", 1, &size);
    character_ = size.cx;
  }
  ~TextLayoutTest() override {
    DeleteDC(dc_);
    DeleteObject(font_);
  }
  std::vector<std::wstring> Lines(const wchar_t* text, int columns, bool mnemonic = false) {
    return LayOut(dc_, text, columns * character_, mnemonic).Lines;
  }

  using List = std::vector<std::wstring>;
  HDC dc_ = CreateCompatibleDC(nullptr);
  HFONT font_ = nullptr;
  int character_ = 0;
};

TEST_F(TextLayoutTest, BreaksLines) {
  EXPECT_EQ(Lines(L"", 10), List({L""}));
  EXPECT_EQ(Lines(L"\rA\rB", 10), List({L"", L"A", L"B"})) << "a bare carriage return";
  EXPECT_EQ(Lines(L"A\r\nB\nC", 10), List({L"A", L"B", L"C"}));
  EXPECT_EQ(Lines(L"one two three", 8), List({L"one two", L"three"}));
  EXPECT_EQ(Lines(L" one", 8), List({L" one"})) << "leading blanks stay";
  EXPECT_EQ(Lines(L"in               this", 10), List({L"in", L"this"}));
  EXPECT_EQ(Lines(L"one two      three four", 20), List({L"one two", L"three four"})) << "a gap";
  EXPECT_EQ(Lines(L"abcdefghijkl", 5), List({L"abcde", L"fghij", L"kl"}));
  EXPECT_EQ(Lines(L"To C:\\folder\\sub\\file", 14), List({L"To C:\\folder\\", L"sub\\file"}));
  EXPECT_EQ(Lines(L" ab", 0), List({L" ", L"a", L"b"})) << "no room at all still ends";
}

TEST_F(TextLayoutTest, FindsTheMnemonic) {
  const TextLayout layout = LayOut(dc_, L"R&&D\r&User", 100 * character_, true);
  EXPECT_EQ(layout.Lines, List({L"R&D", L"User"}));
  EXPECT_EQ(layout.MnemonicLine, 1);
  EXPECT_EQ(layout.MnemonicPosition, 0);
  EXPECT_EQ(Lines(L"a & b", 10), List({L"a & b"})) << "a plain character elsewhere";
}

TEST_F(TextLayoutTest, CutsWithAnEllipsis) {
  TextLayout layout = LayOut(dc_, L"one two three four", 8 * character_, false);
  const int line = layout.LineHeight;
  EXPECT_FALSE(CutToFit(dc_, layout, 8 * character_, 3 * line));
  EXPECT_TRUE(CutToFit(dc_, layout, 8 * character_, 2 * line));
  EXPECT_EQ(layout.Lines, List({L"one two", L"three..."}));
  EXPECT_TRUE(CutToFit(dc_, layout, 8 * character_, 1)) << "one line is always left";
  EXPECT_EQ(layout.Lines, List({L"one t..."}));

  const auto cut = [&](const wchar_t* text) {
    TextLayout path = LayOut(dc_, text, 15 * character_, false);
    CutToFit(dc_, path, 15 * character_, 2 * line);
    return path.Lines;
  };
  EXPECT_EQ(cut(L"To C:\\folder\\folder\\folder\\a.txt"),
            List({L"To C:\\folder\\", L"folder...\\a.txt"}));
  EXPECT_EQ(cut(L"To C:\\folder\\innermost\\a report"),
            List({L"To C:\\folder\\", L"inn...\\a report"}));
  EXPECT_EQ(cut(L"To C:\\folder\\a very long name.txt"),
            List({L"To C:\\folder\\a", L"very long..."}));
}

}  // namespace
}  // namespace talu
