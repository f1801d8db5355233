#include "platform/win32/ShapeWindow.h"

#include <algorithm>

#include "platform/win32/FormFrame.h"

namespace talu {

ShapeWindow::ShapeWindow(FormFrame& frame, std::size_t index)
    : ControlWindow(frame, index, frame.Form().ControlAt(index).Bar ? PROGRESS_CLASSW : L"STATIC",
                    SS_LEFT) {
  if (!View().Bar) return;
  // The class gives itself an edge.
  SetWindowLongW(Window(), GWL_EXSTYLE, 0);
  SetWindowPos(Window(), nullptr, 0, 0, 0, 0,
               SWP_FRAMECHANGED | SWP_NOMOVE | SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
  SendMessageW(Window(), PBM_SETRANGE32, 0, frame.FullBarWidth());
  ShapeWindow::BringUpToDate();
}

void ShapeWindow::BringUpToDate() {
  ControlWindow::BringUpToDate();
  if (View().Bar) SendMessageW(Window(), PBM_SETPOS, static_cast<WPARAM>(View().Width), 0);
}

void ShapeWindow::DrawAt(Canvas& canvas, int left, int top) const {
  RECT area = Area();
  OffsetRect(&area, -left, -top);
  const LONG height = area.bottom - area.top;
  // A bar that has only begun is the left part of a round one.
  RECT shape = area;
  shape.right = std::max(area.right, area.left + height);
  const Palette& colours = frame_.Look().Colours();
  const Colour filling = View().Bar ? colours.Accent : colours.Track;
  const double radius = static_cast<double>(height) / 2;
  canvas.FillRoundWithin(area, shape, radius, filling);
  if (!View().Bar) canvas.FrameRound(area, radius, frame_.Look().Scaled(1), colours.Edge);
}

void ShapeWindow::Draw(Canvas& canvas) {
  const RECT area = Area();
  frame_.DrawShapes(canvas, area.left, area.top);
}

ImageWindow::ImageWindow(FormFrame& frame, std::size_t index)
    : ControlWindow(frame, index, L"STATIC", SS_BITMAP | SS_REALSIZECONTROL) {
  // Past the class, which would look for a bitmap of that name.
  DefWindowProcW(Window(), WM_SETTEXT, 0, reinterpret_cast<LPARAM>(L"Background picture"));
}

void ImageWindow::Update(Property changed) {
  ControlWindow::Update(changed);
  if (changed == Property::Picture || changed == Property::Visible) frame_.DropBackdrop();
}

}  // namespace talu
