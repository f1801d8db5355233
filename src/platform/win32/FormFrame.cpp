#include "platform/win32/FormFrame.h"

#include <algorithm>
#include <utility>

#include "platform/win32/Backdrop.h"
#include "platform/win32/ButtonWindow.h"
#include "platform/win32/LabelWindow.h"
#include "platform/win32/ShapeWindow.h"
#include "platform/win32/Text.h"
#include "platform/win32/TextBoxWindow.h"
#include "runtime/RuntimeError.h"

namespace talu {
namespace {

constexpr DWORD kFrameStyle =
    WS_OVERLAPPED | WS_CAPTION | WS_SYSMENU | WS_MINIMIZEBOX | WS_CLIPCHILDREN;
constexpr const wchar_t* kFrameClass = L"TaLuForm";

void RegisterFrameClass(WNDPROC receive) {
  static bool done = false;
  if (std::exchange(done, true)) return;
  INITCOMMONCONTROLSEX controls = {sizeof controls, ICC_STANDARD_CLASSES | ICC_WIN95_CLASSES};
  InitCommonControlsEx(&controls);
  WNDCLASSEXW frame = {};
  frame.cbSize = sizeof frame;
  frame.lpfnWndProc = receive;
  frame.hInstance = GetModuleHandleW(nullptr);
  frame.hIcon = LoadIconW(frame.hInstance, MAKEINTRESOURCEW(1));
  frame.hCursor = LoadCursorA(nullptr, IDC_ARROW);
  frame.lpszClassName = kFrameClass;
  RegisterClassExW(&frame);
}

}  // namespace

FormFrame::FormFrame(FormWindow& form, Appearance& look, HandlerWatch& watch)
    : form_(form), look_(look), watch_(watch) {
  MakeBrushes();
  RegisterFrameClass(Receive);
  RECT size = {0, 0, look.Pixels(form.WindowWidth()), look.Pixels(form.WindowHeight())};
  AdjustWindowRectEx(&size, kFrameStyle, FALSE, 0);
  window_ = CreateWindowExW(0, kFrameClass, Wide(form.WindowCaption()).c_str(), kFrameStyle, 0, 0,
                            size.right - size.left, size.bottom - size.top, nullptr, nullptr,
                            GetModuleHandleW(nullptr), this);
  if (window_ == nullptr) throw RuntimeError(error::kOutOfMemory);
  SetPropW(window_, Wide(form.WindowName()).c_str(), reinterpret_cast<HANDLE>(1));
  MakeControls();
  OrderControls();
  PlaceOptionStop();
}

FormFrame::~FormFrame() {
  LetGo();
  DestroyWindow(window_);
  DeleteObject(enabledBrush_);
  DeleteObject(disabledBrush_);
}

void FormFrame::MakeBrushes() {
  DeleteObject(enabledBrush_);
  DeleteObject(disabledBrush_);
  enabledBrush_ = CreateSolidBrush(ToColorref(look_.Colours().Card));
  disabledBrush_ = CreateSolidBrush(ToColorref(look_.Colours().FaceDisabled));
}

void FormFrame::LetGo() {
  SetWindowLongPtrW(window_, GWLP_USERDATA, 0);
  controls_.clear();
}

void FormFrame::MakeControls() {
  for (std::size_t i = 0; i < form_.ControlCount(); ++i) {
    switch (form_.ControlAt(i).Kind) {
      case ControlKind::Label:
        controls_.push_back(std::make_unique<LabelWindow>(*this, i));
        break;
      case ControlKind::TextBox:
        controls_.push_back(std::make_unique<TextBoxWindow>(*this, i));
        break;
      case ControlKind::Image:
        controls_.push_back(std::make_unique<ImageWindow>(*this, i));
        break;
      case ControlKind::Shape: {
        auto shape = std::make_unique<ShapeWindow>(*this, i);
        shapes_.push_back(shape.get());
        controls_.push_back(std::move(shape));
        break;
      }
      default:
        controls_.push_back(std::make_unique<ButtonWindow>(*this, i));
        break;
    }
  }
}

void FormFrame::OrderControls() {
  constexpr UINT kOrderOnly = SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE | SWP_NOREDRAW;
  for (std::size_t i = controls_.size(); i-- > 0;) {
    const ControlView& view = controls_[i]->View();
    if (view.Kind == ControlKind::Image || view.Kind == ControlKind::Shape) {
      SetWindowPos(controls_[i]->Window(), HWND_BOTTOM, 0, 0, 0, 0, kOrderOnly);
    }
  }
  const auto title = std::find_if(controls_.begin(), controls_.end(), [](const auto& control) {
    return control->View().Style == TextStyle::Title;
  });
  for (const auto& control : controls_) {
    const ControlView& view = control->View();
    if (view.Bar && title != controls_.end()) {
      SetWindowPos(control->Window(), (*title)->Window(), 0, 0, 0, 0, kOrderOnly);
    }
    if (view.Kind != ControlKind::TextBox || view.LabelledBy.empty()) continue;
    for (const auto& label : controls_) {
      if (label->View().Name != view.LabelledBy) continue;
      const HWND former = GetWindow(control->Window(), GW_HWNDPREV);
      if (former == label->Window()) continue;
      SetWindowPos(label->Window(), former != nullptr ? former : HWND_TOP, 0, 0, 0, 0, kOrderOnly);
    }
  }
}

void FormFrame::Show(const WINDOWPLACEMENT* place, int number) {
  MarkBusy(true);
  SetPropW(window_, L"Shown", reinterpret_cast<HANDLE>(static_cast<INT_PTR>(number)));
  BringUpToDate();
  UpdateSelf(Property::Caption);
  RECT window;
  GetWindowRect(window_, &window);
  const int width = window.right - window.left;
  const int height = window.bottom - window.top;
  int command = SW_SHOWNORMAL;
  if (place != nullptr) {
    WINDOWPLACEMENT here = *place;
    here.rcNormalPosition.right = here.rcNormalPosition.left + width;
    here.rcNormalPosition.bottom = here.rcNormalPosition.top + height;
    // A page must not pop up when the operator has minimised the wizard.
    if (place->showCmd == SW_SHOWMINIMIZED) command = SW_SHOWMINNOACTIVE;
    here.showCmd = SW_HIDE;
    SetWindowPlacement(window_, &here);
  } else {
    RECT work;
    SystemParametersInfoW(SPI_GETWORKAREA, 0, &work, 0);
    const int left = std::max(work.left, work.left + (work.right - work.left - width) / 2);
    const int top = std::max(work.top, work.top + (work.bottom - work.top - height) / 2);
    SetWindowPos(window_, nullptr, left, top, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
  }
  ShowWindow(window_, command);
  RescueFocus();
  RedrawWindow(window_, nullptr, nullptr, RDW_UPDATENOW | RDW_ALLCHILDREN);
  // Nothing waits for them.
  if (toolTips_ == nullptr) MakeToolTips();
}

void FormFrame::MarkBusy(bool busy) {
  if (busy) {
    SetPropW(window_, L"Busy", reinterpret_cast<HANDLE>(1));
  } else {
    RemovePropW(window_, L"Busy");
  }
}

WINDOWPLACEMENT FormFrame::Placement() const {
  WINDOWPLACEMENT place = {};
  place.length = sizeof place;
  GetWindowPlacement(window_, &place);
  return place;
}

void FormFrame::Hide() {
  ShowWindow(window_, SW_HIDE);
  DropBackdrop();
}

void FormFrame::Update(std::size_t index, Property changed) {
  controls_[index]->Update(changed);
  const bool option = controls_[index]->View().Kind == ControlKind::OptionButton;
  if (option && changed != Property::Caption) PlaceOptionStop();
}

void FormFrame::UpdateSelf(Property changed) {
  if (changed == Property::Caption) {
    SetWindowTextW(window_, Wide(form_.WindowCaption()).c_str());
  } else if (changed == Property::MousePointer && IsShown()) {
    POINT pointer;
    GetCursorPos(&pointer);
    const HWND under = WindowFromPoint(pointer);
    if (under != nullptr && GetAncestor(under, GA_ROOT) == window_) {
      SendMessageW(window_, WM_SETCURSOR, reinterpret_cast<WPARAM>(under),
                   MAKELPARAM(HTCLIENT, WM_MOUSEMOVE));
    }
  }
}

void FormFrame::BringUpToDate() {
  while (!stale_.empty()) {
    ControlWindow* control = stale_.back();
    stale_.pop_back();
    control->BringUpToDate();
  }
}

bool FormFrame::HasStaleText() const {
  return std::any_of(stale_.begin(), stale_.end(), [](const ControlWindow* control) {
    return control->View().Kind == ControlKind::Label;
  });
}

const Canvas& FormFrame::Backdrop() {
  if (!backdrop_) {
    const PictureFile* picture = nullptr;
    for (const auto& control : controls_) {
      const ControlView& view = control->View();
      if (view.Kind == ControlKind::Image && view.Visible) {
        picture = static_cast<const PictureFile*>(view.Picture.get());
      }
    }
    backdrop_ = MakeBackdrop(look_.Pixels(form_.WindowWidth()), look_.Pixels(form_.WindowHeight()),
                             picture, look_);
  }
  return *backdrop_;
}

void FormFrame::DropBackdrop() {
  backdrop_.reset();
  if (IsShown())
    RedrawWindow(window_, nullptr, nullptr, RDW_INVALIDATE | RDW_FRAME | RDW_ALLCHILDREN);
}

void FormFrame::DrawShapes(Canvas& canvas, int left, int top) const {
  for (const ShapeWindow* shape : shapes_) {
    if (shape->View().Visible) shape->DrawAt(canvas, left, top);
  }
}

LRESULT CALLBACK FormFrame::Receive(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_NCCREATE) {
    auto* frame = static_cast<FormFrame*>(reinterpret_cast<CREATESTRUCTW*>(lParam)->lpCreateParams);
    frame->window_ = window;
    SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(frame));
  }
  auto* frame = reinterpret_cast<FormFrame*>(GetWindowLongPtrW(window, GWLP_USERDATA));
  if (frame == nullptr) return DefWindowProcW(window, message, wParam, lParam);
  return frame->OnMessage(message, wParam, lParam);
}

LRESULT FormFrame::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_COMMAND:
      return OnCommand(wParam);
    case WM_CTLCOLOREDIT:
    case WM_CTLCOLORSTATIC:
      return reinterpret_cast<LRESULT>(
          TextBoxBrush(reinterpret_cast<HDC>(wParam), reinterpret_cast<HWND>(lParam)));
    case WM_ERASEBKGND: {
      const Canvas& backdrop = Backdrop();
      backdrop.CopyTo(reinterpret_cast<HDC>(wParam), {0, 0, backdrop.Width(), backdrop.Height()}, 0,
                      0);
      return TRUE;
    }
    case WM_SETCURSOR:
      if (LOWORD(lParam) != HTCLIENT) break;
      if (form_.WindowPointer() == 11) {
        SetCursor(LoadCursorA(nullptr, IDC_WAIT));
        return TRUE;
      }
      break;
    case WM_NOTIFY:
      if (reinterpret_cast<NMHDR*>(lParam)->code == TTN_GETDISPINFOW) FillToolTip(lParam);
      return 0;
    case WM_ACTIVATE:
      return OnActivate(LOWORD(wParam) != WA_INACTIVE);
    case WM_SETFOCUS:
      RescueFocus();
      return 0;
    case WM_NEXTDLGCTL:
      MoveFocus(LOWORD(lParam) != 0 ? reinterpret_cast<HWND>(wParam)
                                    : GetNextDlgTabItem(window_, GetFocus(), wParam != 0));
      return 0;
    case WM_CLOSE:
      Close();
      return 0;
    case WM_SYSCOLORCHANGE:
      OnColours();
      return 0;
    case WM_SETTINGCHANGE:
      if (wParam == SPI_SETHIGHCONTRAST) OnColours();
      break;
    case WM_MOUSEWHEEL:
      if (PassOnWheel(wParam, lParam)) return 0;
      break;
    case WM_QUERYENDSESSION:
      Close();
      return TRUE;
    default:
      break;
  }
  return DefWindowProcW(window_, message, wParam, lParam);
}

LRESULT FormFrame::OnCommand(WPARAM wParam) {
  const std::size_t index = LOWORD(wParam) - kFirstControlId;
  if (LOWORD(wParam) >= kFirstControlId && index < controls_.size()) {
    controls_[index]->OnNotification(HIWORD(wParam));
  }
  return 0;
}

// Each page hears of it for itself, hidden or not.
void FormFrame::OnColours() {
  look_.ReadColours();
  MakeBrushes();
  DropBackdrop();
}

HBRUSH FormFrame::TextBoxBrush(HDC dc, HWND control) const {
  const bool enabled = IsWindowEnabled(control) != FALSE;
  const Palette& colours = look_.Colours();
  SetTextColor(dc, ToColorref(enabled ? colours.Text : colours.Disabled));
  SetBkColor(dc, ToColorref(enabled ? colours.Card : colours.FaceDisabled));
  return enabled ? enabledBrush_ : disabledBrush_;
}

}  // namespace talu
