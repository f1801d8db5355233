#include "platform/win32/ButtonWindow.h"

#include <algorithm>

#include "platform/win32/FormFrame.h"
#include "platform/win32/Text.h"
#include "platform/win32/TextLayout.h"

namespace talu {
namespace {

DWORD Style(const ControlView& view) {
  switch (view.Kind) {
    case ControlKind::OptionButton:
      return BS_RADIOBUTTON;
    case ControlKind::CheckBox:
      return BS_CHECKBOX | WS_TABSTOP;
    default:
      return (view.Default ? BS_DEFPUSHBUTTON : BS_PUSHBUTTON) | WS_TABSTOP;
  }
}

std::string WithPlainAmpersands(const std::string& text) {
  std::string doubled;
  for (const char c : text) doubled.append(c == '&' ? 2 : 1, c);
  return doubled;
}

}  // namespace

ButtonWindow::ButtonWindow(FormFrame& frame, std::size_t index)
    : ControlWindow(frame, index, L"BUTTON", Style(frame.Form().ControlAt(index))) {
  ButtonWindow::BringUpToDate();
  ButtonWindow::Update(Property::Value);
}

std::string ButtonWindow::WindowText() const {
  const ControlView* label = frame_.FindControl(View().LabelledBy);
  if (label == nullptr) return View().Text;
  const std::string name = label->Mnemonic ? label->Text : WithPlainAmpersands(label->Text);
  return View().Kind == ControlKind::CommandButton ? name + " " + View().Text : name;
}

void ButtonWindow::Update(Property changed) {
  ControlWindow::Update(changed);
  if (changed == Property::Value) {
    SendMessageW(Window(), BM_SETCHECK, View().Value ? BST_CHECKED : BST_UNCHECKED, 0);
  }
}

void ButtonWindow::BringUpToDate() {
  ControlWindow::BringUpToDate();
  SetWindowTextW(Window(), Wide(WindowText()).c_str());
}

void ButtonWindow::OnNotification(int code) {
  // Windows also clicks an option button that only gets the focus.
  if (code == BN_CLICKED && !gettingFocus_ && IsUsable()) frame_.Click(Index());
}

LRESULT ButtonWindow::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_SETFOCUS: {
      gettingFocus_ = true;
      const LRESULT result = ClassDefaultUnseen(message, wParam, lParam);
      gettingFocus_ = false;
      return result;
    }
    case WM_KILLFOCUS:
    case WM_ENABLE:
    case WM_SETTEXT:
    case BM_SETCHECK:
    case BM_SETSTATE:
    case BM_SETSTYLE:
      return ClassDefaultUnseen(message, wParam, lParam);
    case WM_GETDLGCODE:
      if (View().Kind == ControlKind::OptionButton) {
        return DLGC_BUTTON | DLGC_RADIOBUTTON | DLGC_WANTARROWS;
      }
      break;
    case WM_KEYDOWN:
      if (View().Kind == ControlKind::OptionButton) {
        const bool back = wParam == VK_UP || wParam == VK_LEFT;
        if (back || wParam == VK_DOWN || wParam == VK_RIGHT) {
          frame_.MoveToOption(Index(), back);
          return 0;
        }
      }
      break;
    case WM_MOUSEMOVE:
      Hover(true);
      break;
    case WM_MOUSELEAVE:
      Hover(false);
      break;
    default:
      break;
  }
  return ControlWindow::OnMessage(message, wParam, lParam);
}

void ButtonWindow::Hover(bool hot) {
  if (hot == hot_) return;
  hot_ = hot;
  if (hot) {
    TRACKMOUSEEVENT track = {sizeof track, TME_LEAVE, Window(), 0};
    TrackMouseEvent(&track);
  }
  Repaint();
}

bool ButtonWindow::IsPushed() const {
  return (SendMessageW(Window(), BM_GETSTATE, 0, 0) & BST_PUSHED) != 0;
}

void ButtonWindow::Draw(Canvas& canvas) {
  const HGDIOBJ former = SelectObject(canvas.Dc(), frame_.Look().Font(View().Style));
  if (View().Kind == ControlKind::CommandButton) {
    DrawCommand(canvas);
  } else {
    DrawChoice(canvas);
  }
  SelectObject(canvas.Dc(), former);
}

void ButtonWindow::DrawCommand(Canvas& canvas) const {
  const Appearance& look = frame_.Look();
  const Palette& colours = look.Colours();
  const bool enabled = View().Enabled;
  const bool filled = View().Default && enabled;
  const bool down = IsPushed();
  Colour face = hot_ ? colours.FaceHot : colours.Face;
  Colour edge = hot_ ? colours.Accent : colours.Edge;
  Colour text = colours.OnFace;
  if (filled) {
    face = down ? colours.AccentDown : hot_ ? colours.AccentHot : colours.Accent;
    edge = colours.AccentDown;
    text = colours.OnAccent;
  } else if (!enabled) {
    face = colours.FaceDisabled;
    edge = colours.EdgeDisabled;
    text = colours.Disabled;
  } else if (down) {
    face = colours.FaceDown;
  }

  const RECT area = {0, 0, canvas.Width(), canvas.Height()};
  const int line = look.Scaled(1);
  canvas.FillRound(area, 4 * line, face);
  canvas.FrameRound(area, 4 * line, line, edge);
  if (GetFocus() == Window()) {
    RECT ring = area;
    InflateRect(&ring, -2 * line, -2 * line);
    canvas.FrameRound(ring, 2.5 * line, line, filled ? colours.OnAccent : colours.Accent);
  }

  const TextLayout layout = LayOut(canvas.Dc(), Wide(View().Text), canvas.Width(), true);
  SIZE size = {};
  const std::wstring& first = layout.Lines.front();
  GetTextExtentPoint32W(canvas.Dc(), first.data(), static_cast<int>(first.size()), &size);
  SetTextColor(canvas.Dc(), ToColorref(text));
  RECT middle = area;
  middle.left = (canvas.Width() - size.cx) / 2;
  middle.top = (canvas.Height() - layout.Height()) / 2;
  DrawLines(canvas.Dc(), layout, middle);
}

void ButtonWindow::DrawChoice(Canvas& canvas) const {
  const Appearance& look = frame_.Look();
  const Palette& colours = look.Colours();
  const bool enabled = View().Enabled;
  const bool round = View().Kind == ControlKind::OptionButton;
  const bool marked = View().Value;
  const int line = look.Scaled(1);
  const int ring = 2 * line;
  const int size = std::min(look.Scaled(13), canvas.Height() - 2 * ring);
  const int top = (canvas.Height() - size) / 2;
  const RECT box = {ring, top, ring + size, top + size};
  const double radius = round ? size / 2.0 : 3.0 * line;

  Colour edge = !enabled ? colours.EdgeDisabled : hot_ || marked ? colours.Accent : colours.Edge;
  Colour face = !enabled ? colours.FaceDisabled : IsPushed() ? colours.FaceDown : colours.Face;
  Colour mark = enabled ? colours.Accent : colours.Disabled;
  if (marked && !round && enabled) {
    face = colours.Accent;
    mark = colours.OnAccent;
  }
  canvas.FillRound(box, radius, face);
  canvas.FrameRound(box, radius, line, edge);
  if (marked && round) {
    RECT dot = box;
    InflateRect(&dot, -size * 3 / 11, -size * 3 / 11);
    canvas.FillRound(dot, radius, mark);
  } else if (marked) {
    const auto at = [&](int x, int y) {
      return POINT{box.left + size * x / 100, box.top + size * y / 100};
    };
    canvas.Polyline({at(23, 52), at(43, 73), at(80, 32)}, 1.6 * line, mark);
  }
  if (GetFocus() == Window()) {
    RECT halo = box;
    InflateRect(&halo, ring, ring);
    canvas.FrameRound(halo, radius + ring, line, colours.Accent);
  }

  if (!View().LabelledBy.empty()) return;
  const int indent = box.right + look.Scaled(6);
  TextLayout layout = LayOut(canvas.Dc(), Wide(View().Text), canvas.Width() - indent, true);
  CutToFit(canvas.Dc(), layout, canvas.Width() - indent, canvas.Height());
  SetTextColor(canvas.Dc(), ToColorref(enabled ? colours.Text : colours.Disabled));
  const RECT area = {indent, (canvas.Height() - layout.Height()) / 2, canvas.Width(),
                     canvas.Height()};
  DrawLines(canvas.Dc(), layout, area);
}

}  // namespace talu
