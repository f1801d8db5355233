#pragma once

#include <array>

#include "platform/WindowSystem.h"
#include "platform/win32/Canvas.h"

namespace talu {

/// The pages' colours. Of the wizard's own every text colour, the disabled one too, keeps a
/// contrast of at least 4.5 to 1, and every edge that can be clicked one of 3 to 1, to the page's
/// card, even where the picture below it is black.
struct Palette {
  Colour Page = 0xE8ECF1;
  Colour Card = 0xFFFFFF;
  Colour CardEdge = 0xC9D1DA;
  Colour Text = 0x1F2933;
  Colour Title = 0x14324F;
  Colour Note = 0x555C64;
  Colour Disabled = 0x636A72;
  Colour Accent = 0x1F6AA5;
  Colour AccentHot = 0x2A7ABA;
  Colour AccentDown = 0x17527F;
  Colour OnAccent = 0xFFFFFF;
  Colour Face = 0xFDFDFE;
  Colour FaceHot = 0xF0F6FB;
  Colour FaceDown = 0xDCE9F4;
  Colour FaceDisabled = 0xEDEFF2;
  Colour OnFace = 0x1F2933;
  Colour Edge = 0x6F7B87;
  Colour EdgeDisabled = 0xC4CAD1;
  Colour Track = 0xC3CCD6;
  /// The opacity of the card that lies over the picture and under the texts.
  double CardOpacity = 0.92;
};

/// The colours that the operator has chosen for high contrast; no picture shines through.
Palette SystemPalette();

/// Whether the operator wants high contrast.
bool WantsHighContrast();

COLORREF ToColorref(Colour colour);

/// The distance of the card from the edges of the client area, in twips.
inline constexpr int kCardInset = 240;

/// Sizes on this display, the fonts, and the colours of now.
class Appearance {
 public:
  explicit Appearance(bool (*wantsHighContrast)() = &WantsHighContrast);
  ~Appearance();
  Appearance(const Appearance&) = delete;
  Appearance& operator=(const Appearance&) = delete;

  /// Twips to pixels, rounded to the nearest.
  int Pixels(int twips) const;
  /// A length given in pixels at 96 dots an inch, at least 1.
  int Scaled(int pixels) const;
  const Palette& Colours() const { return colours_; }
  /// Asks anew which colours the operator wants.
  void ReadColours();
  HFONT Font(TextStyle style) const { return fonts_[static_cast<std::size_t>(style)]; }

 private:
  bool (*wantsHighContrast_)();
  Palette colours_;
  int dpi_;
  std::array<HFONT, 5> fonts_{};
};

}  // namespace talu
