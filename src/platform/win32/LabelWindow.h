#pragma once

#include "platform/win32/ControlWindow.h"
#include "platform/win32/TextLayout.h"

namespace talu {

/// A label. It lets the backdrop show through and breaks its text into lines. Text that does not
/// fit ends in an ellipsis, with the whole text as tool tip, or gets a scroll bar.
class LabelWindow : public ControlWindow {
 public:
  LabelWindow(FormFrame& frame, std::size_t index);

  void BringUpToDate() override;
  std::string TipText() const override;
  bool Scrolls() const override { return scrolling_; }

 protected:
  LRESULT OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
  void Draw(Canvas& canvas) override;

 private:
  TextLayout LayOutText(HDC dc, int width) const;
  /// Between the edges and the text, in pixels.
  SIZE Margin() const;
  /// Shows or hides the scroll bar, and takes the keyboard only with it.
  void FitScrollBar();
  void ScrollTo(int line);
  void OnScroll(int command);
  bool OnKey(WPARAM key);
  void OnWheel(int delta);

  bool scrolling_ = false;
  int firstLine_ = 0;
  /// What the wheel was turned since the last line that it scrolled.
  int turned_ = 0;
};

}  // namespace talu
