#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/WindowSystem.h"
#include "platform/win32/Appearance.h"
#include "platform/win32/ControlWindow.h"
#include "platform/win32/Windows.h"

namespace talu {

class ShapeWindow;

/// Is notified when a handler of the form begins and ends.
class HandlerWatch {
 public:
  virtual ~HandlerWatch() = default;
  virtual void HandlerBegins() = 0;
  virtual void HandlerEnds() = 0;
};

/// The top-level window of one form and the windows of its controls.
class FormFrame {
 public:
  /// Window identifier of the control at index 0; the others follow.
  static constexpr std::size_t kFirstControlId = 100;

  /// Makes the windows, still hidden. Raises 7 when Windows gives none.
  FormFrame(FormWindow& form, Appearance& look, HandlerWatch& watch);
  ~FormFrame();
  FormFrame(const FormFrame&) = delete;
  FormFrame& operator=(const FormFrame&) = delete;

  /// Detaches from the form, which may be destroyed before the window.
  void LetGo();

  HWND Window() const { return window_; }
  FormWindow& Form() const { return form_; }
  const Appearance& Look() const { return look_; }

  /// Moves the window to `place` (centred on the work area for nullptr) and shows it. The showing's
  /// number stays on the window as the property "Shown", for other programs.
  void Show(const WINDOWPLACEMENT* place, int number);
  /// Whether procedures of the wizard run while this page is shown: its property "Busy". A page is
  /// shown as busy.
  void MarkBusy(bool busy);
  WINDOWPLACEMENT Placement() const;
  /// Hides the window; frees what only a visible one needs.
  void Hide();
  bool IsShown() const { return IsWindowVisible(window_) != FALSE; }

  void Update(std::size_t index, Property changed);
  void UpdateSelf(Property changed);
  /// Shows what has changed since the last time; painting itself is left to Windows.
  void BringUpToDate();
  bool IsStale() const { return !stale_.empty(); }
  /// Whether a text has changed, not only bars.
  bool HasStaleText() const;
  void AddStale(ControlWindow& control) { stale_.push_back(&control); }

  /// Enter and the mnemonics of labels. Returns whether it handled the message.
  bool HandleKey(const MSG& message);
  /// Moves the focus away from a control that can no longer have it.
  void RescueFocus();

  /// What is behind the controls, of the size of the client area.
  const Canvas& Backdrop();
  void DropBackdrop();
  /// Draws the shapes, in order, on a canvas whose corner is at (`left`, `top`) of the page.
  void DrawShapes(Canvas& canvas, int left, int top) const;

  // The operator's actions on a control.
  void Click(std::size_t index);
  void Type(std::size_t index, const std::string& text);
  void Focus(std::size_t index);
  void Hover(std::size_t index);
  /// Selects the next or previous option button, as the arrow keys do.
  void MoveToOption(std::size_t index, bool back);
  /// A click on a label is a click on the control that it labels.
  void OnLabelClick(const std::string& label);
  void OnLabelText(const std::string& label);
  const ControlView* FindControl(const std::string& name) const;
  /// Width in twips of the form's progress track, 0 when it has none.
  int FullBarWidth() const;

 private:
  static LRESULT CALLBACK Receive(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
  LRESULT OnMessage(UINT message, WPARAM wParam, LPARAM lParam);
  LRESULT OnCommand(WPARAM wParam);
  LRESULT OnActivate(bool active);
  void Close();
  /// Runs an event's handler of the form under the watch.
  void Handle(const std::function<void()>& event);
  void OnColours();
  /// To the label that scrolls, wherever on the page the wheel was turned; false where there is
  /// none.
  bool PassOnWheel(WPARAM wParam, LPARAM lParam);
  void MakeBrushes();
  void MakeControls();
  /// Shapes and pictures are drawn first to last below everything else. A text box comes right
  /// after its label, where assistive software looks for its name; the bar after the title.
  void OrderControls();
  void MakeToolTips();
  void FillToolTip(LPARAM info);
  void MoveFocus(HWND control);
  /// The option buttons are one stop of the tab key: the selected one, or the first.
  void PlaceOptionStop();
  HBRUSH TextBoxBrush(HDC dc, HWND control) const;

  FormWindow& form_;
  Appearance& look_;
  HandlerWatch& watch_;
  HWND window_ = nullptr;
  HWND toolTips_ = nullptr;
  HWND lastFocus_ = nullptr;
  std::wstring tip_;
  HBRUSH enabledBrush_ = nullptr;
  HBRUSH disabledBrush_ = nullptr;
  std::vector<std::unique_ptr<ControlWindow>> controls_;
  std::vector<const ShapeWindow*> shapes_;
  std::vector<ControlWindow*> stale_;
  std::unique_ptr<Canvas> backdrop_;
};

}  // namespace talu
