#include "platform/win32/TextLayout.h"

#include <algorithm>
#include <string_view>

namespace talu {
namespace {

int WidthOf(HDC dc, const wchar_t* text, std::size_t length) {
  SIZE size = {};
  GetTextExtentPoint32W(dc, text, static_cast<int>(length), &size);
  return size.cx;
}

/// The number of characters from the start of `text` that fit into `width`.
std::size_t FittingLength(HDC dc, const wchar_t* text, std::size_t length, int width) {
  int fitting = 0;
  SIZE size = {};
  GetTextExtentExPointW(dc, text, static_cast<int>(length), std::max(width, 0), &fitting, nullptr,
                        &size);
  return static_cast<std::size_t>(fitting);
}

/// Where to break a run of `length` characters of which `fitting` fit. Blanks at the break may
/// extend past it.
std::size_t BreakAt(const wchar_t* text, std::size_t length, std::size_t fitting) {
  if (fitting >= length) return length;
  if (fitting > 0 && text[fitting] == L' ') return fitting;
  std::size_t behindWord = 0;
  std::size_t behindFolder = 0;
  std::size_t behindGap = 0;
  for (std::size_t i = 0; i < fitting; ++i) {
    if (text[i] == L' ') behindWord = i + 1;
    if (i + 3 < fitting && std::wstring_view(text + i, 4) == L"    ") behindGap = i;
    if (text[i] == L'\\' && i > 0) behindFolder = i + 1;
  }
  // A gap means that the author wants the break there.
  if (behindGap > fitting / 3) return behindGap;
  // A break that leaves most of the line empty, as before a long path, is worse than one inside it.
  if (behindWord > fitting / 3) return behindWord;
  if (behindFolder > behindWord) return behindFolder;
  if (behindWord > 0) return behindWord;
  return std::max<std::size_t>(fitting, 1);
}

std::wstring TakeMnemonic(const std::wstring& text, std::size_t& position) {
  std::wstring plain;
  position = std::wstring::npos;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == L'&' && i + 1 < text.size()) {
      ++i;
      if (text[i] != L'&') position = plain.size();
    }
    plain += text[i];
  }
  return plain;
}

/// The last part of the path at the end of `text`, from its backslash on; empty when there is none.
std::wstring FileAtTheEnd(const std::wstring& text) {
  const std::size_t folder = text.rfind(L'\\');
  const bool isPath =
      folder != std::wstring::npos && text.find_first_of(L"\r\n", folder) == std::wstring::npos;
  return isPath ? text.substr(folder) : L"";
}

}  // namespace

TextLayout LayOut(HDC dc, const std::wstring& text, int width, bool mnemonic) {
  TextLayout layout;
  TEXTMETRICW metrics = {};
  GetTextMetricsW(dc, &metrics);
  layout.LineHeight = metrics.tmHeight + metrics.tmExternalLeading;

  std::size_t underlined = std::wstring::npos;
  layout.Text = mnemonic ? TakeMnemonic(text, underlined) : text;
  const std::wstring& plain = layout.Text;
  std::size_t start = 0;
  for (bool more = true; more;) {
    const std::size_t end = std::min(plain.find_first_of(L"\r\n", start), plain.size());
    do {
      const wchar_t* run = plain.data() + start;
      const std::size_t length =
          BreakAt(run, end - start, FittingLength(dc, run, end - start, width));
      if (underlined >= start && underlined < start + length) {
        layout.MnemonicLine = static_cast<int>(layout.Lines.size());
        layout.MnemonicPosition = static_cast<int>(underlined - start);
      }
      std::wstring& line = layout.Lines.emplace_back(run, length);
      start += length;
      if (start == end) break;
      // The blanks at a soft break belong to neither line.
      line.resize(std::max<std::size_t>(line.find_last_not_of(L' ') + 1, 1));
      while (start < end && plain[start] == L' ') ++start;
    } while (start < end);
    more = end < plain.size();
    const bool pair = plain.compare(end, 2, L"\r\n") == 0;
    start = end + (pair ? 2 : 1);
  }
  return layout;
}

bool CutToFit(HDC dc, TextLayout& layout, int width, int height) {
  const auto room = static_cast<std::size_t>(std::max(1, height / std::max(1, layout.LineHeight)));
  if (layout.Lines.size() <= room) return false;
  layout.Lines.resize(room);
  std::wstring& last = layout.Lines.back();
  std::wstring ending = L"...";
  const std::wstring file = FileAtTheEnd(layout.Text);
  if (WidthOf(dc, file.data(), file.size()) <= width * 2 / 3) {
    ending += file;
    // A name that begins on this line must not begin twice.
    const std::size_t begun = last.rfind(L'\\');
    if (begun != std::wstring::npos && file.starts_with(last.substr(begun))) last.resize(begun);
  }
  const int left = width - WidthOf(dc, ending.data(), ending.size());
  last.resize(FittingLength(dc, last.data(), last.size(), left));
  last += ending;
  return true;
}

void DrawLines(HDC dc, const TextLayout& layout, const RECT& area, int first) {
  SetBkMode(dc, TRANSPARENT);
  int top = area.top;
  for (auto i = static_cast<std::size_t>(first); i < layout.Lines.size();
       ++i, top += layout.LineHeight) {
    if (top > area.top && top + layout.LineHeight > area.bottom) break;
    const std::wstring& line = layout.Lines[i];
    ExtTextOutW(dc, area.left, top, ETO_CLIPPED, &area, line.data(), static_cast<UINT>(line.size()),
                nullptr);
    if (static_cast<int>(i) != layout.MnemonicLine) continue;
    const auto position = static_cast<std::size_t>(layout.MnemonicPosition);
    TEXTMETRICW metrics = {};
    GetTextMetricsW(dc, &metrics);
    const int thickness = std::max(1, static_cast<int>(metrics.tmHeight) / 16);
    const int from = area.left + WidthOf(dc, line.data(), position);
    const int below = top + metrics.tmAscent + thickness;
    const RECT under = {from, below, from + WidthOf(dc, line.data() + position, 1),
                        below + thickness};
    const HBRUSH brush = CreateSolidBrush(GetTextColor(dc));
    FillRect(dc, &under, brush);
    DeleteObject(brush);
  }
}

}  // namespace talu
