#include "platform/win32/Canvas.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <new>

namespace talu {
namespace {

/// `weight` is the part of `colour` in 256ths.
std::uint32_t Mix(std::uint32_t below, Colour colour, int weight) {
  std::uint32_t mixed = 0;
  for (int shift = 0; shift < 24; shift += 8) {
    const int from = static_cast<int>((below >> shift) & 0xFF);
    const int to = static_cast<int>((colour >> shift) & 0xFF);
    mixed |= static_cast<std::uint32_t>((from * 256 + (to - from) * weight + 128) >> 8) << shift;
  }
  return mixed;
}

/// Distance from the edge of a rectangle with round corners, negative inside.
double EdgeDistance(const RECT& area, double radius, double x, double y) {
  const double halfWidth = (area.right - area.left) / 2.0;
  const double halfHeight = (area.bottom - area.top) / 2.0;
  const double corner = std::min({radius, halfWidth, halfHeight});
  const double dx = std::abs(x - (area.left + halfWidth)) - (halfWidth - corner);
  const double dy = std::abs(y - (area.top + halfHeight)) - (halfHeight - corner);
  return std::hypot(std::max(dx, 0.0), std::max(dy, 0.0)) + std::min(std::max(dx, dy), 0.0) -
         corner;
}

/// The part of a pixel inside an edge, by the distance of the edge from the pixel's centre.
double Inside(double distance) {
  return std::clamp(0.5 - distance, 0.0, 1.0);
}

/// The part of a rectangle more than `distance` and one pixel away from its edges.
RECT Inset(RECT area, double distance) {
  const int pixels = static_cast<int>(std::ceil(distance)) + 1;
  InflateRect(&area, -pixels, -pixels);
  return area;
}

double LineDistance(const POINT& from, const POINT& to, double x, double y) {
  const double dx = to.x - from.x;
  const double dy = to.y - from.y;
  const double length = dx * dx + dy * dy;
  const double along =
      length > 0 ? std::clamp(((x - from.x) * dx + (y - from.y) * dy) / length, 0.0, 1.0) : 0.0;
  return std::hypot(x - from.x - along * dx, y - from.y - along * dy);
}

}  // namespace

Canvas::Canvas(int width, int height) : width_(std::max(width, 1)), height_(std::max(height, 1)) {
  BITMAPINFO info = {};
  info.bmiHeader.biSize = sizeof info.bmiHeader;
  info.bmiHeader.biWidth = width_;
  info.bmiHeader.biHeight = -height_;  // the first row is the top one
  info.bmiHeader.biPlanes = 1;
  info.bmiHeader.biBitCount = 32;
  void* bits = nullptr;
  dc_ = CreateCompatibleDC(nullptr);
  bitmap_ = CreateDIBSection(dc_, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
  if (bitmap_ == nullptr) {
    DeleteDC(dc_);
    throw std::bad_alloc();
  }
  pixels_ = static_cast<std::uint32_t*>(bits);
  former_ = SelectObject(dc_, bitmap_);
}

Canvas::~Canvas() {
  SelectObject(dc_, former_);
  DeleteObject(bitmap_);
  DeleteDC(dc_);
}

void Canvas::Fill(Colour colour) {
  GdiFlush();
  std::fill_n(pixels_, static_cast<std::size_t>(width_) * static_cast<std::size_t>(height_),
              colour);
}

void Canvas::FillRound(const RECT& area, double radius, Colour colour, double opacity) {
  Blend(
      area, colour,
      [&](double x, double y) { return opacity * Inside(EdgeDistance(area, radius, x, y)); },
      Inset(area, radius));
}

void Canvas::FillRoundWithin(const RECT& limit, const RECT& area, double radius, Colour colour) {
  Blend(limit, colour,
        [&](double x, double y) { return Inside(EdgeDistance(area, radius, x, y)); });
}

void Canvas::FrameRound(const RECT& area, double radius, double thickness, Colour colour) {
  Blend(
      area, colour,
      [&](double x, double y) {
        const double distance = EdgeDistance(area, radius, x, y);
        return Inside(distance) - Inside(distance + thickness);
      },
      Inset(area, radius + thickness));
}

void Canvas::Polyline(const std::vector<POINT>& points, double thickness, Colour colour) {
  Blend({0, 0, width_, height_}, colour, [&](double x, double y) {
    double nearest = std::numeric_limits<double>::max();
    for (std::size_t i = 1; i < points.size(); ++i) {
      nearest = std::min(nearest, LineDistance(points[i - 1], points[i], x, y));
    }
    return Inside(nearest - thickness / 2);
  });
}

void Canvas::CopyTo(HDC target, const RECT& area, int left, int top) const {
  BitBlt(target, area.left, area.top, area.right - area.left, area.bottom - area.top, dc_, left,
         top, SRCCOPY);
}

void Canvas::Blend(const RECT& area, Colour colour,
                   const std::function<double(double x, double y)>& coverage, const RECT& inner) {
  GdiFlush();  // what was drawn through the device context comes first
  const auto weightAt = [&](int x, int y) {
    return static_cast<int>(std::lround(256 * coverage(x + 0.5, y + 0.5)));
  };
  const int innerWeight = IsRectEmpty(&inner) ? 0
                                              : weightAt((inner.left + inner.right) / 2,
                                                         (inner.top + inner.bottom) / 2);
  const int left = std::max<int>(area.left, 0);
  const int right = std::min<int>(area.right, width_);
  const int bottom = std::min<int>(area.bottom, height_);
  for (int y = std::max<int>(area.top, 0); y < bottom; ++y) {
    std::uint32_t* row = pixels_ + static_cast<std::ptrdiff_t>(y) * width_;
    const bool crossesInner = y >= inner.top && y < inner.bottom;
    for (int x = left; x < right; ++x) {
      const bool isInner = crossesInner && x >= inner.left && x < inner.right;
      if (isInner && innerWeight == 0) {
        x = static_cast<int>(inner.right) - 1;
        continue;
      }
      const int weight = isInner ? innerWeight : weightAt(x, y);
      if (weight > 0) row[x] = Mix(row[x], colour, weight);
    }
  }
}

}  // namespace talu
