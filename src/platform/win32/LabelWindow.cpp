#include "platform/win32/LabelWindow.h"

#include <algorithm>

#include "platform/win32/FormFrame.h"
#include "platform/win32/Text.h"

namespace talu {
namespace {

Colour TextColour(const ControlView& view, const Palette& colours) {
  if (!view.Enabled) return colours.Disabled;
  switch (view.Style) {
    case TextStyle::Title:
      return colours.Title;
    case TextStyle::Note:
      return colours.Note;
    default:
      return colours.Text;
  }
}

int ClientWidth(HWND window) {
  RECT client;
  GetClientRect(window, &client);
  return client.right;
}

int ClientHeight(HWND window) {
  RECT client;
  GetClientRect(window, &client);
  return client.bottom;
}

/// A device context with the window's font, for measuring.
class MeasuringDc {
 public:
  MeasuringDc(HWND window, HFONT font)
      : window_(window), dc_(GetDC(window)), former_(SelectObject(dc_, font)) {}
  ~MeasuringDc() {
    SelectObject(dc_, former_);
    ReleaseDC(window_, dc_);
  }
  MeasuringDc(const MeasuringDc&) = delete;
  MeasuringDc& operator=(const MeasuringDc&) = delete;
  operator HDC() const { return dc_; }

 private:
  HWND window_;
  HDC dc_;
  HGDIOBJ former_;
};

}  // namespace

LabelWindow::LabelWindow(FormFrame& frame, std::size_t index)
    : ControlWindow(frame, index, L"STATIC", SS_LEFT | SS_NOPREFIX) {
  LabelWindow::BringUpToDate();
}

void LabelWindow::BringUpToDate() {
  ControlWindow::BringUpToDate();
  // Past the class, which would draw the text at once.
  DefWindowProcW(Window(), WM_SETTEXT, 0, reinterpret_cast<LPARAM>(Wide(View().Text).c_str()));
  frame_.OnLabelText(View().Name);
  if (View().Scrolls) FitScrollBar();
  Repaint();
}

TextLayout LabelWindow::LayOutText(HDC dc, int width) const {
  return LayOut(dc, Wide(View().Text), width, View().Mnemonic);
}

SIZE LabelWindow::Margin() const {
  if (!View().Scrolls) return {0, 0};
  return {frame_.Look().Pixels(kScrollMargin), frame_.Look().Scaled(2)};
}

std::string LabelWindow::TipText() const {
  if (!View().ToolTipText.empty() || View().Scrolls) return View().ToolTipText;
  const MeasuringDc dc(Window(), frame_.Look().Font(View().Style));
  const int width = ClientWidth(Window());
  TextLayout layout = LayOutText(dc, width);
  return CutToFit(dc, layout, width, ClientHeight(Window())) ? View().Text : "";
}

void LabelWindow::Draw(Canvas& canvas) {
  const HDC dc = canvas.Dc();
  const HGDIOBJ former = SelectObject(dc, frame_.Look().Font(View().Style));
  SetTextColor(dc, ToColorref(TextColour(View(), frame_.Look().Colours())));
  const RECT area = {0, 0, canvas.Width(), canvas.Height()};
  RECT inner = area;
  InflateRect(&inner, -Margin().cx, -Margin().cy);
  const int width = inner.right - inner.left;
  TextLayout layout = LayOutText(dc, width);
  if (!scrolling_) CutToFit(dc, layout, width, inner.bottom - inner.top);
  DrawLines(dc, layout, inner, firstLine_);
  SelectObject(dc, former);
  if (GetFocus() == Window())
    canvas.FrameRound(area, 2, frame_.Look().Scaled(1), frame_.Look().Colours().Accent);
}

void LabelWindow::FitScrollBar() {
  RECT window;
  GetWindowRect(Window(), &window);
  const int height = window.bottom - window.top - 2 * Margin().cy;
  const int whole = window.right - window.left - 2 * Margin().cx;
  const MeasuringDc dc(Window(), frame_.Look().Font(View().Style));
  TextLayout layout = LayOutText(dc, whole);
  scrolling_ = layout.Height() > height;
  if (scrolling_) layout = LayOutText(dc, whole - GetSystemMetrics(SM_CXVSCROLL));
  SCROLLINFO info = {};
  info.cbSize = sizeof info;
  info.fMask = SIF_RANGE | SIF_PAGE;
  info.nMax = static_cast<int>(layout.Lines.size()) - 1;
  info.nPage = static_cast<UINT>(std::max(1, height / layout.LineHeight));
  SetScrollInfo(Window(), SB_VERT, &info, TRUE);
  ShowScrollBar(Window(), SB_VERT, scrolling_);
  const LONG style = GetWindowLongW(Window(), GWL_STYLE);
  SetWindowLongW(Window(), GWL_STYLE,
                 scrolling_ ? style | LONG{WS_TABSTOP} : style & ~LONG{WS_TABSTOP});
  ScrollTo(firstLine_);
}

void LabelWindow::ScrollTo(int line) {
  SCROLLINFO info = {};
  info.cbSize = sizeof info;
  info.fMask = SIF_POS;
  info.nPos = line;
  SetScrollInfo(Window(), SB_VERT, &info, TRUE);
  GetScrollInfo(Window(), SB_VERT, &info);  // limited to the range
  firstLine_ = scrolling_ ? info.nPos : 0;
  Repaint();
}

void LabelWindow::OnScroll(int command) {
  SCROLLINFO info = {};
  info.cbSize = sizeof info;
  info.fMask = SIF_ALL;
  GetScrollInfo(Window(), SB_VERT, &info);
  const int page = static_cast<int>(info.nPage);
  switch (command) {
    case SB_LINEUP:
      return ScrollTo(firstLine_ - 1);
    case SB_LINEDOWN:
      return ScrollTo(firstLine_ + 1);
    case SB_PAGEUP:
      return ScrollTo(firstLine_ - page);
    case SB_PAGEDOWN:
      return ScrollTo(firstLine_ + page);
    case SB_TOP:
      return ScrollTo(info.nMin);
    case SB_BOTTOM:
      return ScrollTo(info.nMax);
    case SB_THUMBTRACK:
    case SB_THUMBPOSITION:
      return ScrollTo(info.nTrackPos);
    default:
      return;
  }
}

bool LabelWindow::OnKey(WPARAM key) {
  static constexpr struct {
    WPARAM Key;
    int Command;
  } kKeys[] = {{VK_UP, SB_LINEUP},     {VK_DOWN, SB_LINEDOWN}, {VK_PRIOR, SB_PAGEUP},
               {VK_NEXT, SB_PAGEDOWN}, {VK_HOME, SB_TOP},      {VK_END, SB_BOTTOM}};
  for (const auto& entry : kKeys) {
    if (entry.Key != key) continue;
    OnScroll(entry.Command);
    return true;
  }
  return false;
}

// Touchpads and fine wheels turn by less than a notch at a time.
void LabelWindow::OnWheel(int delta) {
  UINT lines = 3;  // a notch
  SystemParametersInfoW(SPI_GETWHEELSCROLLLINES, 0, &lines, 0);
  SCROLLINFO info = {};
  info.cbSize = sizeof info;
  info.fMask = SIF_PAGE;
  GetScrollInfo(Window(), SB_VERT, &info);
  // The setting may also be a page (a very large number), which is the most.
  const int step = static_cast<int>(std::min(lines, std::max(info.nPage, 1U)));
  if ((delta < 0) != (turned_ < 0)) turned_ = 0;
  turned_ += delta * step;
  const int whole = turned_ / WHEEL_DELTA;
  turned_ -= whole * WHEEL_DELTA;
  if (whole != 0) ScrollTo(firstLine_ - whole);
}

LRESULT LabelWindow::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_GETTEXT:
    case WM_GETTEXTLENGTH:
      if (IsStale()) BringUpToDate();
      break;
    case WM_GETDLGCODE:
      return scrolling_ ? DLGC_WANTARROWS : 0;
    case WM_NCHITTEST: {
      // So that tool tips and clicks find it.
      const LRESULT hit = DefWindowProcW(Window(), message, wParam, lParam);
      return hit == HTTRANSPARENT ? HTCLIENT : hit;
    }
    case WM_LBUTTONDOWN:
      if (scrolling_) SetFocus(Window());
      frame_.OnLabelClick(View().Name);
      return 0;
    case WM_SETFOCUS:
    case WM_KILLFOCUS:
      Repaint();
      return 0;
    case WM_VSCROLL:
      turned_ = 0;
      OnScroll(LOWORD(wParam));
      return 0;
    case WM_MOUSEWHEEL:
      // Else the page gets it.
      if (!scrolling_) return DefWindowProcW(Window(), message, wParam, lParam);
      OnWheel(GET_WHEEL_DELTA_WPARAM(wParam));
      return 0;
    case WM_KEYDOWN:
      if (scrolling_ && OnKey(wParam)) return 0;
      break;
    default:
      break;
  }
  return ControlWindow::OnMessage(message, wParam, lParam);
}

}  // namespace talu
