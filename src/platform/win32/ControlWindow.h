#pragma once

#include <cstddef>
#include <string>

#include "platform/WindowSystem.h"
#include "platform/win32/Canvas.h"
#include "platform/win32/Windows.h"

namespace talu {

class FormFrame;

/// The child window of one control: of one of Windows' own classes, so that assistive software
/// knows it, but painted in the pages' style.
class ControlWindow {
 public:
  virtual ~ControlWindow();
  ControlWindow(const ControlWindow&) = delete;
  ControlWindow& operator=(const ControlWindow&) = delete;

  HWND Window() const { return window_; }
  std::size_t Index() const { return index_; }
  const ControlView& View() const;
  /// The control's place in the client area of the page, in pixels.
  RECT Area() const;
  /// Whether the operator can use it now.
  bool IsUsable() const { return View().Enabled && View().Visible; }

  /// Has more to show than there is room for, and takes the wheel.
  virtual bool Scrolls() const { return false; }

  /// A property has a new value. What changes thousands of times a second (captions of labels,
  /// widths) is only noted; `BringUpToDate` shows it.
  virtual void Update(Property changed);
  virtual void BringUpToDate();
  /// The whole text for a tool tip, empty for none.
  virtual std::string TipText() const { return View().ToolTipText; }
  /// What the class reports to its parent (`BN_CLICKED`, `EN_CHANGE`...).
  virtual void OnNotification(int) {}

 protected:
  ControlWindow(FormFrame& frame, std::size_t index, const wchar_t* windowClass, DWORD style);

  virtual LRESULT OnMessage(UINT message, WPARAM wParam, LPARAM lParam);
  /// Draws the control on a canvas of the size of its client area, which shows the page's backdrop.
  virtual void Draw(Canvas& canvas) = 0;

  LRESULT ClassDefault(UINT message, WPARAM wParam, LPARAM lParam);
  /// Lets the class handle a message without drawing anything itself, then repaints.
  LRESULT ClassDefaultUnseen(UINT message, WPARAM wParam, LPARAM lParam);
  void Repaint();
  /// Requests `BringUpToDate` before the next painting.
  void MarkStale();
  bool IsStale() const { return stale_; }

  FormFrame& frame_;

 private:
  static LRESULT CALLBACK Receive(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
  void Paint(HDC given);
  void ApplyWidth();

  std::size_t index_;
  HWND window_ = nullptr;
  /// What received the window's messages before us.
  WNDPROC former_ = nullptr;
  bool stale_ = false;
  int shownWidth_ = -1;
};

}  // namespace talu
