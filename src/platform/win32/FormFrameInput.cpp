// The operator's actions on a form: keys, focus, clicks, hovering.

#include <cctype>

#include "platform/win32/FormFrame.h"
#include "platform/win32/Text.h"

namespace talu {
namespace {

/// The character after the first single "&", in lower case; 0 when there is none.
char MnemonicOf(const std::string& text) {
  for (std::size_t i = 0; i + 1 < text.size(); ++i) {
    if (text[i] != '&') continue;
    ++i;
    if (text[i] != '&') return static_cast<char>(std::tolower(static_cast<unsigned char>(text[i])));
  }
  return 0;
}

bool IsOption(const ControlWindow& control) {
  return control.View().Kind == ControlKind::OptionButton;
}

}  // namespace

bool FormFrame::HandleKey(const MSG& message) {
  if (message.message == WM_KEYDOWN && message.wParam == VK_RETURN) {
    // A key held down must not run through pages that are already filled in.
    constexpr LPARAM kRepeated = 1L << 30;
    if ((message.lParam & kRepeated) != 0) return true;
    std::size_t chosen = controls_.size();
    for (std::size_t i = 0; i < controls_.size(); ++i) {
      const ControlView& view = controls_[i]->View();
      if (!controls_[i]->IsUsable()) continue;
      const bool focused =
          view.Kind == ControlKind::CommandButton && controls_[i]->Window() == GetFocus();
      if (focused || (view.Default && chosen == controls_.size())) chosen = i;
      if (focused) break;
    }
    if (chosen < controls_.size()) Click(chosen);
    return true;
  }

  const HWND focus = GetFocus();
  const bool typing =
      focus != nullptr && (SendMessageW(focus, WM_GETDLGCODE, 0, 0) & DLGC_WANTCHARS) != 0;
  if (message.message != WM_SYSCHAR && (message.message != WM_CHAR || typing)) return false;
  if (message.wParam >= 0x80) return false;  // the labels' letters are ASCII
  const char key = static_cast<char>(std::tolower(static_cast<unsigned char>(message.wParam)));
  for (std::size_t i = 0; i < controls_.size(); ++i) {
    const ControlView& label = controls_[i]->View();
    if (label.Kind != ControlKind::Label || !label.Mnemonic || !controls_[i]->IsUsable() ||
        MnemonicOf(label.Text) != key) {
      continue;
    }
    for (const auto& control : controls_) {
      if (control->View().LabelledBy == label.Name) {
        OnLabelClick(label.Name);
        return true;
      }
    }
    for (std::size_t next = i + 1; next < controls_.size(); ++next) {
      const HWND window = controls_[next]->Window();
      if (!controls_[next]->IsUsable() || (GetWindowLongW(window, GWL_STYLE) & WS_TABSTOP) == 0) {
        continue;
      }
      MoveFocus(window);
      return true;
    }
  }
  return false;
}

void FormFrame::MoveFocus(HWND control) {
  if (control == nullptr || control == window_) return;
  SetFocus(control);
  if ((SendMessageW(control, WM_GETDLGCODE, 0, 0) & DLGC_HASSETSEL) != 0) {
    SendMessageW(control, EM_SETSEL, 0, -1);
  }
}

void FormFrame::RescueFocus() {
  if (!IsShown() || GetActiveWindow() != window_ || IsIconic(window_)) return;
  const auto canHave = [this](HWND control) {
    return control != nullptr && IsChild(window_, control) && IsWindowVisible(control) &&
           IsWindowEnabled(control);
  };
  const HWND focus = GetFocus();
  if (canHave(focus)) return;
  if (focus == window_ && canHave(lastFocus_)) {
    SetFocus(lastFocus_);
    return;
  }
  const HWND from = focus != nullptr && IsChild(window_, focus) ? focus : nullptr;
  const HWND next = GetNextDlgTabItem(window_, from, FALSE);
  if (canHave(next)) {
    MoveFocus(next);
  } else if (focus != window_) {
    SetFocus(window_);
  }
}

LRESULT FormFrame::OnActivate(bool active) {
  if (!active) {
    lastFocus_ = GetFocus();
  } else if (!IsIconic(window_)) {
    SetFocus(window_);
  }
  return 0;
}

void FormFrame::PlaceOptionStop() {
  ControlWindow* stop = nullptr;
  for (const auto& control : controls_) {
    if (!IsOption(*control) || !control->IsUsable()) continue;
    if (stop == nullptr || (control->View().Value && !stop->View().Value)) stop = control.get();
  }
  for (const auto& control : controls_) {
    if (!IsOption(*control)) continue;
    const LONG style = GetWindowLongW(control->Window(), GWL_STYLE);
    const LONG wanted =
        control.get() == stop ? style | LONG{WS_TABSTOP} : style & ~LONG{WS_TABSTOP};
    if (wanted != style) SetWindowLongW(control->Window(), GWL_STYLE, wanted);
  }
}

void FormFrame::MoveToOption(std::size_t index, bool back) {
  const std::size_t count = controls_.size();
  for (std::size_t step = 1; step < count; ++step) {
    const std::size_t next = (index + (back ? count - step : step)) % count;
    if (!IsOption(*controls_[next]) || !controls_[next]->IsUsable()) continue;
    SetFocus(controls_[next]->Window());
    Click(next);
    return;
  }
}

void FormFrame::OnLabelClick(const std::string& label) {
  for (std::size_t i = 0; i < controls_.size(); ++i) {
    const ControlView& view = controls_[i]->View();
    if (view.LabelledBy != label || !controls_[i]->IsUsable()) continue;
    MoveFocus(controls_[i]->Window());
    if (view.Kind == ControlKind::OptionButton || view.Kind == ControlKind::CheckBox) Click(i);
    return;
  }
}

void FormFrame::OnLabelText(const std::string& label) {
  for (const auto& control : controls_) {
    const ControlView& view = control->View();
    if (view.LabelledBy == label && view.Kind != ControlKind::TextBox) {
      control->Update(Property::Caption);
    }
  }
}

const ControlView* FormFrame::FindControl(const std::string& name) const {
  if (name.empty()) return nullptr;
  for (std::size_t i = 0; i < form_.ControlCount(); ++i) {
    if (form_.ControlAt(i).Name == name) return &form_.ControlAt(i);
  }
  return nullptr;
}

int FormFrame::FullBarWidth() const {
  for (std::size_t i = 0; i < form_.ControlCount(); ++i) {
    const ControlView& view = form_.ControlAt(i);
    if (view.Kind == ControlKind::Shape && !view.Bar) return view.Width;
  }
  return 0;
}

bool FormFrame::PassOnWheel(WPARAM wParam, LPARAM lParam) {
  for (const auto& control : controls_) {
    if (!control->Scrolls()) continue;
    SendMessageW(control->Window(), WM_MOUSEWHEEL, wParam, lParam);
    return true;
  }
  return false;
}

void FormFrame::MakeToolTips() {
  toolTips_ = CreateWindowExW(WS_EX_TOPMOST, TOOLTIPS_CLASSW, nullptr,
                              WS_POPUP | TTS_ALWAYSTIP | TTS_NOPREFIX, 0, 0, 0, 0, window_, nullptr,
                              GetModuleHandleW(nullptr), nullptr);
  SendMessageW(toolTips_, WM_SETFONT, reinterpret_cast<WPARAM>(look_.Font(TextStyle::Body)), FALSE);
  SendMessageW(toolTips_, TTM_SETMAXTIPWIDTH, 0, look_.Pixels(form_.WindowWidth()));
  SendMessageW(toolTips_, TTM_SETDELAYTIME, TTDT_AUTOPOP, MAKELPARAM(30000, 0));
  for (const auto& control : controls_) {
    TOOLINFOW tool = {};
    tool.cbSize = TTTOOLINFOA_V1_SIZE;
    tool.uFlags = TTF_IDISHWND | TTF_SUBCLASS;
    tool.hwnd = window_;
    tool.uId = reinterpret_cast<UINT_PTR>(control->Window());
    tool.lpszText = LPSTR_TEXTCALLBACKW;
    SendMessageW(toolTips_, TTM_ADDTOOLW, 0, reinterpret_cast<LPARAM>(&tool));
  }
}

void FormFrame::FillToolTip(LPARAM info) {
  auto* wanted = reinterpret_cast<NMTTDISPINFOW*>(info);
  for (const auto& control : controls_) {
    if (reinterpret_cast<UINT_PTR>(control->Window()) == wanted->hdr.idFrom) {
      tip_ = Wide(control->TipText());
    }
  }
  wanted->lpszText = tip_.data();
}

void FormFrame::Handle(const std::function<void()>& event) {
  watch_.HandlerBegins();
  event();
  watch_.HandlerEnds();
}

void FormFrame::Click(std::size_t index) {
  Handle([&] { form_.OperatorClicked(index); });
}

void FormFrame::Type(std::size_t index, const std::string& text) {
  Handle([&] { form_.OperatorTyped(index, text); });
}

void FormFrame::Focus(std::size_t index) {
  Handle([&] { form_.OperatorFocused(index); });
}

void FormFrame::Hover(std::size_t index) {
  Handle([&] { form_.OperatorHovered(index); });
}

void FormFrame::Close() {
  Handle([&] { form_.OperatorClosed(); });
}

}  // namespace talu
