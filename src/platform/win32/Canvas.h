#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "platform/win32/Windows.h"

namespace talu {

/// A colour as 0xRRGGBB.
using Colour = std::uint32_t;

/// A picture in memory to draw on: it draws smooth round shapes itself, text and pictures through
/// its device context. Coordinates are pixels.
class Canvas {
 public:
  Canvas(int width, int height);
  ~Canvas();
  Canvas(const Canvas&) = delete;
  Canvas& operator=(const Canvas&) = delete;

  int Width() const { return width_; }
  int Height() const { return height_; }
  /// Drawing through it takes effect at once.
  HDC Dc() const { return dc_; }

  void Fill(Colour colour);
  /// A rectangle with round corners, mixed in with `opacity` from 0 to 1.
  void FillRound(const RECT& area, double radius, Colour colour, double opacity = 1);
  /// The part of it within `limit`.
  void FillRoundWithin(const RECT& limit, const RECT& area, double radius, Colour colour);
  /// Its outline, `thickness` pixels wide, inside the rectangle.
  void FrameRound(const RECT& area, double radius, double thickness, Colour colour);
  /// Line from point to point with round ends.
  void Polyline(const std::vector<POINT>& points, double thickness, Colour colour);
  /// Copies the part of the canvas that begins at (`left`, `top`).
  void CopyTo(HDC target, const RECT& area, int left, int top) const;

 private:
  /// Mixes `colour` into each pixel of `area` by the `coverage` at its centre. Within `inner` the
  /// coverage is the same everywhere and called for only once.
  void Blend(const RECT& area, Colour colour,
             const std::function<double(double x, double y)>& coverage, const RECT& inner = {});

  int width_;
  int height_;
  HDC dc_ = nullptr;
  HBITMAP bitmap_ = nullptr;
  HGDIOBJ former_ = nullptr;
  std::uint32_t* pixels_ = nullptr;
};

}  // namespace talu
