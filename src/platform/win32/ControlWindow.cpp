#include "platform/win32/ControlWindow.h"

#include <algorithm>

#include "platform/win32/FormFrame.h"
#include "platform/win32/Text.h"
#include "runtime/RuntimeError.h"

namespace talu {

ControlWindow::ControlWindow(FormFrame& frame, std::size_t index, const wchar_t* windowClass,
                             DWORD style)
    : frame_(frame), index_(index) {
  const ControlView& view = View();
  const RECT area = Area();
  DWORD all = style | WS_CHILD | WS_CLIPSIBLINGS;
  if (view.Visible) all |= WS_VISIBLE;
  if (!view.Enabled) all |= WS_DISABLED;
  const auto id = reinterpret_cast<HMENU>(FormFrame::kFirstControlId + index);
  window_ = CreateWindowExW(0, windowClass, L"", all, area.left, area.top, area.right - area.left,
                            area.bottom - area.top, frame.Window(), id, GetModuleHandleW(nullptr),
                            nullptr);
  if (window_ == nullptr) throw RuntimeError(error::kOutOfMemory);
  SetWindowLongPtrW(window_, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
  // SetWindowSubclass would look for a window property at each message, under Wine in another
  // process.
  const auto receive = reinterpret_cast<LONG_PTR>(&Receive);
  former_ = reinterpret_cast<WNDPROC>(SetWindowLongPtrW(window_, GWLP_WNDPROC, receive));
  SendMessageW(window_, WM_SETFONT, reinterpret_cast<WPARAM>(frame.Look().Font(view.Style)), FALSE);
  SetPropW(window_, Wide(view.Name).c_str(), reinterpret_cast<HANDLE>(1));
  ApplyWidth();
}

ControlWindow::~ControlWindow() {
  // The window itself goes with its frame.
  SetWindowLongPtrW(window_, GWLP_USERDATA, 0);
}

const ControlView& ControlWindow::View() const {
  return frame_.Form().ControlAt(index_);
}

RECT ControlWindow::Area() const {
  const ControlView& view = View();
  const Appearance& look = frame_.Look();
  return {look.Pixels(view.Left), look.Pixels(view.Top),
          look.Pixels(view.Left + std::max(view.Width, 0)), look.Pixels(view.Top + view.Height)};
}

void ControlWindow::Update(Property changed) {
  switch (changed) {
    case Property::Enabled:
      EnableWindow(window_, View().Enabled);
      Repaint();
      break;
    case Property::Visible:
      ShowWindow(window_, View().Visible ? SW_SHOWNA : SW_HIDE);
      break;
    case Property::Caption:
    case Property::Width:
      MarkStale();
      break;
    default:
      break;
  }
}

void ControlWindow::BringUpToDate() {
  stale_ = false;
  ApplyWidth();
}

void ControlWindow::ApplyWidth() {
  const int width = View().Width;
  if (width == shownWidth_) return;
  SetPropW(window_, L"Width", reinterpret_cast<HANDLE>(static_cast<INT_PTR>(width)));
  const bool first = shownWidth_ < 0;
  shownWidth_ = width;
  if (first) return;

  const RECT area = Area();
  RECT before;
  GetClientRect(window_, &before);
  const int height = area.bottom - area.top;
  const int pixels = area.right - area.left;
  if (pixels == before.right) return;
  SetWindowPos(window_, nullptr, 0, 0, pixels, height,
               SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE | SWP_NOOWNERZORDER);
  // Only the end has changed.
  const RECT end = {std::min<LONG>(pixels, before.right) - height, 0, pixels, height};
  InvalidateRect(window_, &end, FALSE);
}

void ControlWindow::Repaint() {
  InvalidateRect(window_, nullptr, FALSE);
}

void ControlWindow::MarkStale() {
  if (stale_) return;
  stale_ = true;
  frame_.AddStale(*this);
}

LRESULT ControlWindow::ClassDefault(UINT message, WPARAM wParam, LPARAM lParam) {
  return CallWindowProcW(former_, window_, message, wParam, lParam);
}

LRESULT ControlWindow::ClassDefaultUnseen(UINT message, WPARAM wParam, LPARAM lParam) {
  // A window with redrawing off counts as invisible, so only a visible one is switched.
  const bool visible = IsWindowVisible(window_) != FALSE;
  if (visible) DefWindowProcW(window_, WM_SETREDRAW, FALSE, 0);
  const LRESULT result = ClassDefault(message, wParam, lParam);
  if (visible) {
    DefWindowProcW(window_, WM_SETREDRAW, TRUE, 0);
    Repaint();
  }
  return result;
}

LRESULT ControlWindow::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_ERASEBKGND:
      return TRUE;
    case WM_PRINTCLIENT:
      Paint(reinterpret_cast<HDC>(wParam));
      return 0;
    case WM_PAINT:
      Paint(nullptr);
      return 0;
    case WM_UPDATEUISTATE:
      // At the first key some classes draw at once, to underline.
      return ClassDefaultUnseen(message, wParam, lParam);
    default:
      return ClassDefault(message, wParam, lParam);
  }
}

void ControlWindow::Paint(HDC given) {
  PAINTSTRUCT paint = {};
  const HDC target = given != nullptr ? given : BeginPaint(window_, &paint);
  RECT client;
  GetClientRect(window_, &client);
  if (!IsRectEmpty(&client)) {
    Canvas canvas(client.right, client.bottom);
    const RECT area = Area();
    frame_.Backdrop().CopyTo(canvas.Dc(), client, area.left, area.top);
    Draw(canvas);
    canvas.CopyTo(target, client, 0, 0);
  }
  if (given == nullptr) EndPaint(window_, &paint);
}

LRESULT CALLBACK ControlWindow::Receive(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  auto* control = reinterpret_cast<ControlWindow*>(GetWindowLongPtrW(window, GWLP_USERDATA));
  if (control != nullptr) return control->OnMessage(message, wParam, lParam);
  const auto ofClass = reinterpret_cast<WNDPROC>(GetClassLongPtrW(window, GCLP_WNDPROC));
  return CallWindowProcW(ofClass, window, message, wParam, lParam);
}

}  // namespace talu
