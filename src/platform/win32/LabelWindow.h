#pragma once

#include "platform/win32/ControlWindow.h"
#include "platform/win32/TextLayout.h"

namespace talu {

/// A label. It shows the backdrop through, breaks its text into lines, and where they do not all
/// fit it ends in an ellipsis and shows the whole text as its tool tip, or gets a scroll bar.
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
  /// Shows or hides the scroll bar and takes or leaves the keyboard, as the text needs it.
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
