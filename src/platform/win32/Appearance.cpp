#include "platform/win32/Appearance.h"

#include <algorithm>
#include <cwchar>

namespace talu {
namespace {

constexpr int kTwipsAnInch = 1440;
constexpr int kPointsAnInch = 72;
constexpr int kPlainDpi = 96;

int ScreenDpi() {
  const HDC screen = GetDC(nullptr);
  const int dpi = GetDeviceCaps(screen, LOGPIXELSX);
  ReleaseDC(nullptr, screen);
  return dpi;
}

int CALLBACK NoteFound(const LOGFONTW*, const TEXTMETRICW*, DWORD, LPARAM found) {
  *reinterpret_cast<bool*>(found) = true;
  return 0;
}

bool IsInstalled(const wchar_t* face) {
  LOGFONTW wanted = {};
  wanted.lfCharSet = DEFAULT_CHARSET;
  std::wcsncpy(wanted.lfFaceName, face, LF_FACESIZE - 1);
  bool found = false;
  const HDC screen = GetDC(nullptr);
  EnumFontFamiliesExW(screen, &wanted, NoteFound, reinterpret_cast<LPARAM>(&found), 0);
  ReleaseDC(nullptr, screen);
  return found;
}

struct Face {
  const wchar_t* Name;
  /// Size that looks like the others at 100.
  int Percent;
};

/// "MS Sans Serif" has bitmaps for ordinary displays only; above that its outline version is sharp.
/// The others are for machines that have neither.
Face ChooseFace(int dpi) {
  constexpr Face kBitmapped = {L"MS Sans Serif", 100};
  if (dpi == kPlainDpi && IsInstalled(kBitmapped.Name)) return kBitmapped;
  constexpr Face kOutlined[] = {{L"Microsoft Sans Serif", 100},
                                {L"Tahoma", 100},
                                {L"DejaVu Sans", 92},
                                {L"Liberation Sans", 100}};
  for (const Face& face : kOutlined) {
    if (IsInstalled(face.Name)) return face;
  }
  return {L"MS Shell Dlg", 100};
}

HFONT MakeFont(const Face& face, int dpi, int points, int weight) {
  const int height = MulDiv(points * face.Percent, dpi, kPointsAnInch * 100);
  return CreateFontW(-height, 0, 0, 0, weight, FALSE, FALSE, FALSE, DEFAULT_CHARSET,
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
  HIGHCONTRASTW wanted = {};
  wanted.cbSize = sizeof wanted;
  return SystemParametersInfoW(SPI_GETHIGHCONTRAST, sizeof wanted, &wanted, 0) != FALSE &&
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
  return MulDiv(twips, dpi_, kTwipsAnInch);
}

int Appearance::Scaled(int pixels) const {
  return std::max(1, MulDiv(pixels, dpi_, kPlainDpi));
}

}  // namespace talu
