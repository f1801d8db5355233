#include "platform/win32/TextBoxWindow.h"

#include <algorithm>

#include "platform/win32/FormFrame.h"
#include "platform/win32/Text.h"

namespace talu {
namespace {

constexpr WPARAM kBullet = 0x2022;

}  // namespace

TextBoxWindow::TextBoxWindow(FormFrame& frame, std::size_t index)
    : ControlWindow(frame, index, L"EDIT",
                    ES_AUTOHSCROLL | WS_TABSTOP |
                        (frame.Form().ControlAt(index).Password ? DWORD{ES_PASSWORD} : 0)) {
  SetWindowPos(Window(), nullptr, 0, 0, 0, 0,
               SWP_FRAMECHANGED | SWP_NOMOVE | SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
  if (View().Password) SendMessageW(Window(), EM_SETPASSWORDCHAR, kBullet, 0);
  TextBoxWindow::Update(Property::Text);
  NoteLength();
}

void TextBoxWindow::NoteLength() const {
  if (!View().Password) return;
  const INT_PTR typed = GetWindowTextLengthW(Window()) + 1;
  SetPropW(Window(), L"Typed", reinterpret_cast<HANDLE>(typed));
}

std::string TextBoxWindow::Contents() const {
  std::wstring text(static_cast<std::size_t>(GetWindowTextLengthW(Window())), L'\0');
  const int length = GetWindowTextW(Window(), text.data(), static_cast<int>(text.size() + 1));
  text.resize(static_cast<std::size_t>(length));
  return Narrow(text);
}

void TextBoxWindow::Update(Property changed) {
  ControlWindow::Update(changed);
  if (changed == Property::Text && Contents() != View().Text) {
    setting_ = true;
    SetWindowTextW(Window(), Wide(View().Text).c_str());
    setting_ = false;
  } else if (changed == Property::Selection) {
    SendMessageW(Window(), EM_SETSEL, static_cast<WPARAM>(View().SelStart),
                 View().SelStart + View().SelLength);
  }
}

void TextBoxWindow::OnNotification(int code) {
  if (code == EN_CHANGE) NoteLength();
  if (code == EN_CHANGE && !setting_) frame_.Type(Index(), Contents());
  if (code == EN_SETFOCUS) frame_.Focus(Index());
}

LRESULT TextBoxWindow::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_NCCALCSIZE:
      // Both forms of the argument begin with the new window rectangle.
      PlaceText(*reinterpret_cast<RECT*>(lParam));
      return 0;
    case WM_NCPAINT:
      PaintBorder();
      return 0;
    case WM_NCHITTEST:
      return HTCLIENT;
    case WM_SETFOCUS:
    case WM_KILLFOCUS:
    case WM_ENABLE: {
      const LRESULT result = ClassDefault(message, wParam, lParam);
      RedrawWindow(Window(), nullptr, nullptr, RDW_FRAME | RDW_INVALIDATE);
      return result;
    }
    case WM_MOUSEMOVE:
      frame_.Hover(Index());
      break;
    case WM_PAINT:
    case WM_PRINTCLIENT:
    case WM_ERASEBKGND:
      return ClassDefault(message, wParam, lParam);
    default:
      break;
  }
  return ControlWindow::OnMessage(message, wParam, lParam);
}

void TextBoxWindow::PlaceText(RECT& area) const {
  const HDC dc = GetDC(nullptr);
  const HGDIOBJ former = SelectObject(dc, frame_.Look().Font(View().Style));
  TEXTMETRICW metrics = {};
  GetTextMetricsW(dc, &metrics);
  SelectObject(dc, former);
  ReleaseDC(nullptr, dc);
  const int spare = std::max<int>(area.bottom - area.top - metrics.tmHeight, 2);
  InflateRect(&area, -frame_.Look().Scaled(5), 0);
  area.top += spare / 2;
  area.bottom -= spare - spare / 2;
}

void TextBoxWindow::PaintBorder() {
  RECT window;
  GetWindowRect(Window(), &window);
  RECT client;
  GetClientRect(Window(), &client);
  MapWindowPoints(Window(), nullptr, reinterpret_cast<POINT*>(&client), 2);
  OffsetRect(&client, -window.left, -window.top);
  OffsetRect(&window, -window.left, -window.top);

  Canvas canvas(window.right, window.bottom);
  const RECT area = Area();
  frame_.Backdrop().CopyTo(canvas.Dc(), window, area.left, area.top);
  Draw(canvas);
  const HDC dc = GetWindowDC(Window());
  ExcludeClipRect(dc, client.left, client.top, client.right, client.bottom);
  canvas.CopyTo(dc, window, 0, 0);
  ReleaseDC(Window(), dc);
}

void TextBoxWindow::Draw(Canvas& canvas) {
  const int line = frame_.Look().Scaled(1);
  const Palette& colours = frame_.Look().Colours();
  const bool enabled = View().Enabled;
  const bool focused = GetFocus() == Window();
  const RECT area = {0, 0, canvas.Width(), canvas.Height()};
  canvas.FillRound(area, 3 * line, enabled ? colours.Card : colours.FaceDisabled);
  canvas.FrameRound(area, 3 * line, focused ? 2 * line : line,
                    !enabled  ? colours.EdgeDisabled
                    : focused ? colours.Accent
                              : colours.Edge);
}

}  // namespace talu
