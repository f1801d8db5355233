#pragma once

#include "forms/Controls.h"

namespace talu {

/// The progress bar's full width in twips.
inline constexpr int kProgressWidth = 7325;

/// The layout of all pages, in twips on a grid of 120: a content column as wide as the progress
/// track, the choices indented by one step, the buttons at the lower right.
namespace layout {
inline constexpr int kPageWidth = 9000;
inline constexpr int kPageHeight = 6300;
inline constexpr int kLeft = 840;
inline constexpr int kIndent = 1200;
inline constexpr int kWidth = kProgressWidth;
inline constexpr int kIndentWidth = kLeft + kWidth - kIndent;
inline constexpr int kLine = 240;
inline constexpr int kBoxHeight = 330;

inline constexpr Place kTitle{kLeft, 480, kWidth, 480};
inline constexpr Place kStatus{kLeft, 4200, kWidth, 480};
inline constexpr Place kTrack{kLeft, 4800, kProgressWidth, 180};
inline constexpr Place kNote{kLeft, 5040, kWidth, 360};
inline constexpr Place kNext{kLeft + kWidth - 1320, 5520, 1320, 420};
inline constexpr Place kBack{kLeft + kWidth - 2760, 5520, 1320, 420};

/// The progress bar at a width, in twips.
constexpr Place Bar(int width) {
  return {kTrack.Left, kTrack.Top, width, kTrack.Height};
}
/// An option button or check box, level with the capitals of its label, which is at `indent` + 360
/// and `top`.
constexpr Place Mark(int indent, int top) {
  return {indent, top - 60, 300, 300};
}
/// A line of text in the indented column, `lines` high.
constexpr Place Text(int top, int lines = 1) {
  return {kIndent, top, kIndentWidth, lines * kLine};
}
/// A text box that ends at the right edge of the column.
constexpr Place Box(int left, int top) {
  return {left, top, kLeft + kWidth - left, kBoxHeight};
}
/// A folder box and the button after it that opens the folder browser.
constexpr Place FolderBox(int left, int top) {
  return {left, top, kLeft + kWidth - left - 600, kBoxHeight};
}
constexpr Place FolderButton(int top) {
  return {kLeft + kWidth - 480, top, 480, kBoxHeight};
}
}  // namespace layout

}  // namespace talu
