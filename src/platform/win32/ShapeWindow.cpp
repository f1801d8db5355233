#include "platform/win32/ShapeWindow.h"

#include <algorithm>

#include "platform/win32/FormFrame.h"

namespace talu {

ShapeWindow::ShapeWindow(FormFrame& frame, std::size_t index)
    : ControlWindow(frame, index, "STATIC", SS_LEFT) {}

void ShapeWindow::DrawAt(Canvas& canvas, int left, int top) const {
  RECT area = Area();
  OffsetRect(&area, -left, -top);
  const LONG height = area.bottom - area.top;
  // A bar that has hardly begun is the left part of a round one.
  RECT shape = area;
  shape.right = std::max(area.right, area.left + height);
  const Colour filling = View().Bar ? colour::Accent : colour::Track;
  canvas.FillRoundWithin(area, shape, static_cast<double>(height) / 2, filling);
}

void ShapeWindow::Draw(Canvas& canvas) {
  const RECT area = Area();
  frame_.DrawShapes(canvas, area.left, area.top);
}

ImageWindow::ImageWindow(FormFrame& frame, std::size_t index)
    : ControlWindow(frame, index, "STATIC", SS_LEFT) {}

void ImageWindow::Update(Property changed) {
  ControlWindow::Update(changed);
  if (changed == Property::Picture || changed == Property::Visible) frame_.DropBackdrop();
}

}  // namespace talu
