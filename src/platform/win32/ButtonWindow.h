#pragma once

#include "platform/win32/ControlWindow.h"

namespace talu {

/// A command button, option button or check box. A click only notifies the form; the form sets the
/// value, and the button shows it.
class ButtonWindow : public ControlWindow {
 public:
  ButtonWindow(FormFrame& frame, std::size_t index);

  void Update(Property changed) override;
  void BringUpToDate() override;
  void OnNotification(int code) override;

 protected:
  LRESULT OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
  void Draw(Canvas& canvas) override;

 private:
  std::string WindowText() const;
  void DrawCommand(Canvas& canvas) const;
  /// The glyph of an option button or check box, and its text if no label has it.
  void DrawChoice(Canvas& canvas) const;
  bool IsPushed() const;
  void Hover(bool hot);

  bool hot_ = false;
  bool gettingFocus_ = false;
};

}  // namespace talu
