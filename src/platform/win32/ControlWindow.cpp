#include "platform/win32/ControlWindow.h"

#include <algorithm>

#include "platform/win32/FormFrame.h"
#include "runtime/RuntimeError.h"

namespace talu {
namespace {

LRESULT CallProcedure(WNDPROC procedure, bool unicode, HWND window, UINT message, WPARAM wParam,
                      LPARAM lParam) {
  return unicode ? CallWindowProcW(procedure, window, message, wParam, lParam)
                 : CallWindowProcA(procedure, window, message, wParam, lParam);
}

}  // namespace

ControlWindow::ControlWindow(FormFrame& frame, std::size_t index, const char* windowClass,
                             DWORD style)
    : frame_(frame), index_(index) {
  const ControlView& view = View();
  const RECT area = Area();
  DWORD all = style | WS_CHILD | WS_CLIPSIBLINGS;
  if (view.Visible) all |= WS_VISIBLE;
  if (!view.Enabled) all |= WS_DISABLED;
  const auto id = reinterpret_cast<HMENU>(FormFrame::kFirstControlId + index);
  window_ = CreateWindowExA(0, windowClass, "", all, area.left, area.top, area.right - area.left,
                            area.bottom - area.top, frame.Window(), id, GetModuleHandleA(nullptr),
                            nullptr);
  if (window_ == nullptr) throw RuntimeError(error::kOutOfMemory);
  SetWindowLongPtrA(window_, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
  // SetWindowSubclass would look up a window property for each message, under Wine in another
  // process.
  const auto receive = reinterpret_cast<LONG_PTR>(&Receive);
  unicode_ = IsWindowUnicode(window_) != FALSE;
  former_ = reinterpret_cast<WNDPROC>(unicode_ ? SetWindowLongPtrW(window_, GWLP_WNDPROC, receive)
                                               : SetWindowLongPtrA(window_, GWLP_WNDPROC, receive));
  SendMessageA(window_, WM_SETFONT, reinterpret_cast<WPARAM>(frame.Look().Font(view.Style)), FALSE);
  SetPropA(window_, view.Name.c_str(), reinterpret_cast<HANDLE>(1));
  ApplyWidth();
}

ControlWindow::~ControlWindow() {
  // The frame destroys the window itself.
  SetWindowLongPtrA(window_, GWLP_USERDATA, 0);
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
  SetPropA(window_, "Width", reinterpret_cast<HANDLE>(static_cast<INT_PTR>(width)));
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
  return CallProcedure(former_, unicode_, window_, message, wParam, lParam);
}

LRESULT ControlWindow::ClassDefaultUnseen(UINT message, WPARAM wParam, LPARAM lParam) {
  // A window with redrawing off counts as invisible, so only a visible one is switched.
  const bool visible = IsWindowVisible(window_) != FALSE;
  if (visible) DefWindowProcA(window_, WM_SETREDRAW, FALSE, 0);
  const LRESULT result = ClassDefault(message, wParam, lParam);
  if (visible) {
    DefWindowProcA(window_, WM_SETREDRAW, TRUE, 0);
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
  auto* control = reinterpret_cast<ControlWindow*>(GetWindowLongPtrA(window, GWLP_USERDATA));
  if (control != nullptr) return control->OnMessage(message, wParam, lParam);
  const bool unicode = IsWindowUnicode(window) != FALSE;
  const auto ofClass =
      unicode ? GetClassLongPtrW(window, GCLP_WNDPROC) : GetClassLongPtrA(window, GCLP_WNDPROC);
  return CallProcedure(reinterpret_cast<WNDPROC>(ofClass), unicode, window, message, wParam,
                       lParam);
}

}  // namespace talu
