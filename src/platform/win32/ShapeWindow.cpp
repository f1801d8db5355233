#include "platform/win32/ShapeWindow.h"

#include "platform/win32/FormFrame.h"

namespace talu {

ShapeWindow::ShapeWindow(FormFrame& frame, std::size_t index)
    : ControlWindow(frame, index, "STATIC", SS_LEFT) {}

void ShapeWindow::DrawAt(Canvas& canvas, int left, int top) const {
  RECT area = Area();
  OffsetRect(&area, -left, -top);
  canvas.FillRound(area, canvas.Height() / 2.0, View().Bar ? colour::Accent : colour::Track);
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
