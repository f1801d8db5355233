#pragma once

#include <array>

#include "platform/WindowSystem.h"
#include "platform/win32/Canvas.h"

namespace talu {

/// The pages' colours. Every text colour, the disabled one too, keeps a contrast of at least 4.5 to
/// 1, and every edge that can be clicked one of 3 to 1, to the page's card, even where the picture
/// below it is black.
namespace colour {
inline constexpr Colour kPage = 0xE8ECF1;
inline constexpr Colour kCard = 0xFFFFFF;
inline constexpr Colour kCardEdge = 0xC9D1DA;
inline constexpr Colour kText = 0x1F2933;
inline constexpr Colour kTitle = 0x14324F;
inline constexpr Colour kNote = 0x555C64;
inline constexpr Colour kDisabled = 0x636A72;
inline constexpr Colour kAccent = 0x1F6AA5;
inline constexpr Colour kAccentHot = 0x2A7ABA;
inline constexpr Colour kAccentDown = 0x17527F;
inline constexpr Colour kOnAccent = 0xFFFFFF;
inline constexpr Colour kFace = 0xFDFDFE;
inline constexpr Colour kFaceHot = 0xF0F6FB;
inline constexpr Colour kFaceDown = 0xDCE9F4;
inline constexpr Colour kFaceDisabled = 0xEDEFF2;
inline constexpr Colour kEdge = 0x6F7B87;
inline constexpr Colour kEdgeDisabled = 0xC4CAD1;
inline constexpr Colour kTrack = 0xC3CCD6;
}  // namespace colour

COLORREF ToColorref(Colour colour);

/// The opacity of the card between the picture and the texts.
inline constexpr double kCardOpacity = 0.92;
/// The card's distance from the edges of the client area, in twips.
inline constexpr int kCardInset = 240;

/// Sizes on this display, and the fonts.
class Appearance {
 public:
  Appearance();
  ~Appearance();
  Appearance(const Appearance&) = delete;
  Appearance& operator=(const Appearance&) = delete;

  /// Twips to pixels, rounded to the nearest.
  int Pixels(int twips) const;
  /// A length given in pixels at 96 dots an inch, at least 1.
  int Scaled(int pixels) const;
  HFONT Font(TextStyle style) const { return fonts_[static_cast<std::size_t>(style)]; }

 private:
  int dpi_;
  std::array<HFONT, 5> fonts_{};
};

}  // namespace talu
