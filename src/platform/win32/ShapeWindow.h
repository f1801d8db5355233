#pragma once

#include "platform/win32/ControlWindow.h"

namespace talu {

/// The progress track or its filled part, which assistive software knows as a progress bar.
class ShapeWindow : public ControlWindow {
 public:
  ShapeWindow(FormFrame& frame, std::size_t index);
  /// Draws the shape on a canvas whose upper left corner is at (`left`, `top`) of the page.
  void DrawAt(Canvas& canvas, int left, int top) const;
  void BringUpToDate() override;

 protected:
  void Draw(Canvas& canvas) override;
};

/// The page's picture, as the backdrop shows it.
class ImageWindow : public ControlWindow {
 public:
  ImageWindow(FormFrame& frame, std::size_t index);
  void Update(Property changed) override;

 protected:
  void Draw(Canvas&) override {}
};

}  // namespace talu
