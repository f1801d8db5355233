#include "Screenshot.h"

// GDI+ needs COM declarations, and min and max.
#include <objidl.h>

#include <algorithm>
namespace Gdiplus {
using std::max;
using std::min;
}  // namespace Gdiplus
#include <gdiplus.h>

#include <cstring>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <system_error>
#include <vector>

#include "Text.h"

namespace talu::drive {

namespace {

/// 32-bit pixels, top row first, as on the screen.
struct Capture {
  int Width = 0;
  int Height = 0;
  std::vector<BYTE> Pixels;

  bool operator==(const Capture&) const = default;
};

Capture CaptureScreen(const RECT& area) {
  Capture capture{
      static_cast<int>(area.right - area.left), static_cast<int>(area.bottom - area.top), {}};
  BITMAPINFO info = {};
  info.bmiHeader.biSize = sizeof info.bmiHeader;
  info.bmiHeader.biWidth = capture.Width;
  info.bmiHeader.biHeight = -capture.Height;  // top row first
  info.bmiHeader.biPlanes = 1;
  info.bmiHeader.biBitCount = 32;
  void* bits = nullptr;
  const HDC screen = GetDC(nullptr);
  const HDC memory = CreateCompatibleDC(screen);
  const HBITMAP bitmap = CreateDIBSection(memory, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
  bool done = false;
  if (bitmap != nullptr) {
    const HGDIOBJ before = SelectObject(memory, bitmap);
    done = BitBlt(memory, 0, 0, capture.Width, capture.Height, screen, area.left, area.top,
                  SRCCOPY | CAPTUREBLT);
    GdiFlush();
    const auto* first = static_cast<const BYTE*>(bits);
    capture.Pixels.assign(first, first + 4 * capture.Width * capture.Height);
    SelectObject(memory, before);
    DeleteObject(bitmap);
  }
  DeleteDC(memory);
  ReleaseDC(nullptr, screen);
  if (!done) throw std::runtime_error("the screen cannot be read");
  return capture;
}

Capture CaptureAtRest(const RECT& area) {
  Capture last = CaptureScreen(area);
  for (int i = 0; i < 10; ++i) {
    Sleep(100);
    Capture next = CaptureScreen(area);
    if (next == last) break;
    last = std::move(next);
  }
  return last;
}

void WritePng(Capture& capture, const std::filesystem::path& file) {
  // The encoder's class id is fixed by GDI+.
  static const CLSID kPng = {
      0x557cf406, 0x1a04, 0x11d3, {0x9a, 0x73, 0x00, 0x00, 0xf8, 0x1e, 0xf3, 0x2e}};
  Gdiplus::GdiplusStartupInput input;
  ULONG_PTR token = 0;
  if (Gdiplus::GdiplusStartup(&token, &input, nullptr) != Gdiplus::Ok) {
    throw std::runtime_error("GDI+ does not start");
  }
  auto bitmap = std::make_unique<Gdiplus::Bitmap>(capture.Width, capture.Height, 4 * capture.Width,
                                                  PixelFormat32bppRGB, capture.Pixels.data());
  const Gdiplus::Status status = bitmap->Save(file.c_str(), &kPng, nullptr);
  bitmap.reset();
  Gdiplus::GdiplusShutdown(token);
  if (status != Gdiplus::Ok)
    throw std::runtime_error("cannot write " + Quoted(Utf8(file.native())));
}

}  // namespace

RECT ScreenArea() {
  const int left = GetSystemMetrics(SM_XVIRTUALSCREEN);
  const int top = GetSystemMetrics(SM_YVIRTUALSCREEN);
  return {left, top, left + GetSystemMetrics(SM_CXVIRTUALSCREEN),
          top + GetSystemMetrics(SM_CYVIRTUALSCREEN)};
}

void SaveScreenshot(const RECT& area, const std::string& file) {
  RECT seen = {};
  const RECT screen = ScreenArea();
  if (!IntersectRect(&seen, &area, &screen))
    throw std::runtime_error("the window is off the screen");
  Capture capture = CaptureAtRest(seen);
  const std::filesystem::path path(Wide(file));
  std::error_code ignored;  // a missing folder is reported when the file is written
  std::filesystem::create_directories(path.parent_path(), ignored);
  WritePng(capture, path);
}

}  // namespace talu::drive
