#include "platform/win32/Appearance.h"

#include <algorithm>
#include <cstring>

namespace talu {
namespace {

constexpr int twipsAnInch = 1440;
constexpr int pointsAnInch = 72;
constexpr int plainDpi = 96;

int ScreenDpi() {
  const HDC screen = GetDC(nullptr);
  const int dpi = GetDeviceCaps(screen, LOGPIXELSX);
  ReleaseDC(nullptr, screen);
  return dpi;
}

int CALLBACK NoteFound(const LOGFONTA*, const TEXTMETRICA*, DWORD, LPARAM found) {
  *reinterpret_cast<bool*>(found) = true;
  return 0;
}

bool IsInstalled(const char* face) {
  LOGFONTA wanted = {};
  wanted.lfCharSet = DEFAULT_CHARSET;
  std::strncpy(wanted.lfFaceName, face, LF_FACESIZE - 1);
  bool found = false;
  const HDC screen = GetDC(nullptr);
  EnumFontFamiliesExA(screen, &wanted, NoteFound, reinterpret_cast<LPARAM>(&found), 0);
  ReleaseDC(nullptr, screen);
  return found;
}

struct Face {
  const char* Name;
  /// Size that looks like the others at 100.
  int Percent;
};

/// "MS Sans Serif" has bitmaps for plain displays only; above that its outline twin is sharp. The
/// others are for machines that have neither.
Face ChooseFace(int dpi) {
  constexpr Face bitmapped = {"MS Sans Serif", 100};
  if (dpi == plainDpi && IsInstalled(bitmapped.Name)) return bitmapped;
  constexpr Face outlined[] = {{"Microsoft Sans Serif", 100},
                               {"Tahoma", 100},
                               {"DejaVu Sans", 92},
                               {"Liberation Sans", 100}};
  for (const Face& face : outlined) {
    if (IsInstalled(face.Name)) return face;
  }
  return {"MS Shell Dlg", 100};
}

HFONT MakeFont(const Face& face, int dpi, int points, int weight) {
  const int height = MulDiv(points * face.Percent, dpi, pointsAnInch * 100);
  return CreateFontA(-height, 0, 0, 0, weight, FALSE, FALSE, FALSE, DEFAULT_CHARSET,
                     OUT_DEFAULT_PRECIS, CLIP_DEFAULT_PRECIS, CLEARTYPE_QUALITY,
                     VARIABLE_PITCH | FF_SWISS, face.Name);
}

Colour SystemColour(int which) {
  const COLORREF colour = GetSysColor(which);
  return Colour{GetRValue(colour)} << 16 | Colour{GetGValue(colour)} << 8 | GetBValue(colour);
}

}  // namespace

Palette SystemPalette() {
  const Colour window = SystemColour(COLOR_WINDOW);
  const Colour text = SystemColour(COLOR_WINDOWTEXT);
  const Colour disabled = SystemColour(COLOR_GRAYTEXT);
  const Colour chosen = SystemColour(COLOR_HIGHLIGHT);
  const Colour face = SystemColour(COLOR_BTNFACE);
  return {.Page = window,
          .Card = window,
          .CardEdge = text,
          .Text = text,
          .Title = text,
          .Note = text,
          .Disabled = disabled,
          .Accent = chosen,
          .AccentHot = chosen,
          .AccentDown = chosen,
          .OnAccent = SystemColour(COLOR_HIGHLIGHTTEXT),
          .Face = face,
          .FaceHot = face,
          .FaceDown = face,
          .FaceDisabled = window,
          .OnFace = SystemColour(COLOR_BTNTEXT),
          .Edge = text,
          .EdgeDisabled = disabled,
          .Track = window,
          .CardOpacity = 1};
}

bool WantsHighContrast() {
  HIGHCONTRASTA wanted = {};
  wanted.cbSize = sizeof wanted;
  return SystemParametersInfoA(SPI_GETHIGHCONTRAST, sizeof wanted, &wanted, 0) != FALSE &&
         (wanted.dwFlags & HCF_HIGHCONTRASTON) != 0;
}

COLORREF ToColorref(Colour colour) {
  return RGB((colour >> 16) & 0xFF, (colour >> 8) & 0xFF, colour & 0xFF);
}

Appearance::Appearance(bool (*wantsHighContrast)())
    : wantsHighContrast_(wantsHighContrast), dpi_(ScreenDpi()) {
  ReadColours();
  const Face face = ChooseFace(dpi_);
  const auto set = [&](TextStyle style, int points, int weight) {
    fonts_[static_cast<std::size_t>(style)] = MakeFont(face, dpi_, points, weight);
  };
  set(TextStyle::Title, 14, FW_BOLD);
  set(TextStyle::Label, 9, FW_BOLD);
  set(TextStyle::Body, 9, FW_NORMAL);
  set(TextStyle::Status, 9, FW_NORMAL);
  set(TextStyle::Note, 8, FW_NORMAL);
}

Appearance::~Appearance() {
  for (const HFONT font : fonts_) DeleteObject(font);
}

void Appearance::ReadColours() {
  colours_ = wantsHighContrast_() ? SystemPalette() : Palette();
}

int Appearance::Pixels(int twips) const {
  return MulDiv(twips, dpi_, twipsAnInch);
}

int Appearance::Scaled(int pixels) const {
  return std::max(1, MulDiv(pixels, dpi_, plainDpi));
}

}  // namespace talu
