#pragma once

#include <string>
#include <vector>

#include "platform/win32/Windows.h"

namespace talu {

/// A text broken into lines.
struct TextLayout {
  /// The whole text, without the marks of mnemonics.
  std::wstring Text;
  std::vector<std::wstring> Lines;
  /// Height of one line in pixels.
  int LineHeight = 0;
  /// Line and position of the character to underline; line -1 when there is none.
  int MnemonicLine = -1;
  int MnemonicPosition = 0;

  int Height() const { return LineHeight * static_cast<int>(Lines.size()); }
};

/// Breaks `text` so that no line is wider than `width` pixels in the font that is selected into
/// `dc`: at each CR, LF or CR LF, else at a wide gap, else at blanks, else after a backslash, else
/// in the middle of a word. With `mnemonic` a single "&" underlines the character after it and
/// "&&" is one "&".
TextLayout LayOut(HDC dc, const std::wstring& text, int width, bool mnemonic);

/// Keeps only the lines that fit into `height` pixels, at least one. The last line then ends in an
/// ellipsis, within `width` pixels, followed by the file name if the text ends in a path. Returns
/// whether a line was removed.
bool CutToFit(HDC dc, TextLayout& layout, int width, int height);

/// Draws the lines from `first` on into `area`, as many whole ones as fit, in the colour and font
/// that are selected into `dc`.
void DrawLines(HDC dc, const TextLayout& layout, const RECT& area, int first = 0);

}  // namespace talu
