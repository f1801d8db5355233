#pragma once

#include "platform/win32/ControlWindow.h"

namespace talu {

/// A text box of one line.
class TextBoxWindow : public ControlWindow {
 public:
  TextBoxWindow(FormFrame& frame, std::size_t index);

  void Update(Property changed) override;
  void OnNotification(int code) override;

 protected:
  LRESULT OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
  /// The frame around the text; the class paints the text itself.
  void Draw(Canvas& canvas) override;

 private:
  std::string Contents() const;
  /// Leaves room for the border and centres the line.
  void PlaceText(RECT& area) const;
  void PaintBorder();
  /// Leaves the length of what a masked box has on its window, one more than that as the property
  /// "Typed": the system tells it to no other process.
  void NoteLength() const;

  bool setting_ = false;
};

}  // namespace talu
