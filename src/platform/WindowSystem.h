#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>

namespace talu {

/// A loaded picture. Only the window system that made it can read it.
class Picture {
 public:
  virtual ~Picture() = default;
};

enum class ControlKind { Label, TextBox, CommandButton, OptionButton, CheckBox, Image, Shape };

/// The role of a text: the page's title, a control's own label, running text, the status line, the
/// quiet note. The window system chooses sizes and colours.
enum class TextStyle { Title, Label, Body, Status, Note };

/// The properties of a control or form that can change after the window is made.
enum class Property {
  Caption,
  Text,
  Enabled,
  Visible,
  Value,
  Width,
  ToolTipText,
  Picture,
  Selection,
  MousePointer
};

/// The margin to the left and right of the text of a label that scrolls, in twips: its focus is
/// drawn there.
inline constexpr int kScrollMargin = 90;

/// A control as the window system sees it. Places and sizes are in twips (1440 an inch), measured
/// from the upper left corner of the form's client area. The order of a form's controls is the
/// tab order and, from bottom to top, the drawing order.
struct ControlView {
  ControlKind Kind = ControlKind::Label;
  std::string Name;
  int Left = 0;
  int Top = 0;
  int Width = 0;
  int Height = 0;
  /// The caption of a label, button or box; the contents of a text box. In captions "&" marks the
  /// mnemonic (not in a label whose `Mnemonic` is off) and a bare carriage return breaks the line.
  std::string Text;
  std::string ToolTipText;
  bool Enabled = true;
  bool Visible = true;
  /// Option button selected, check box ticked.
  bool Value = false;
  /// Selected part of a text box, in characters.
  int SelStart = 0;
  int SelLength = 0;
  std::shared_ptr<talu::Picture> Picture;

  TextStyle Style = TextStyle::Body;
  /// The text box hides its text.
  bool Password = false;
  /// Enter clicks this button wherever the focus is.
  bool Default = false;
  /// "&" in a label's caption marks a mnemonic; elsewhere it is an ordinary character.
  bool Mnemonic = false;
  /// A label that can be scrolled when its text does not fit; any other label that does not fit
  /// shows its whole text as a tool tip.
  bool Scrolls = false;
  /// For a shape: the filled part of the progress track.
  bool Bar = false;
  /// Name of the label that describes this control: a click on that label is a click on the
  /// control, and assistive software reads its text as the control's name, followed by the button's
  /// own text for a command button. Empty when the control's own text is enough.
  std::string LabelledBy;
};

/// A form as the window system sees it: what to draw, and who receives the operator's actions.
class FormWindow {
 public:
  virtual ~FormWindow() = default;

  virtual const std::string& WindowName() const = 0;
  virtual const std::string& WindowCaption() const = 0;
  /// 0 is the default pointer, 11 the hourglass.
  virtual int WindowPointer() const = 0;
  /// Size of the client area in twips.
  virtual int WindowWidth() const = 0;
  virtual int WindowHeight() const = 0;
  virtual std::size_t ControlCount() const = 0;
  virtual const ControlView& ControlAt(std::size_t index) const = 0;

  /// A button, option button or check box was clicked (mouse, keyboard or assistive software). The
  /// form sets the new value; the window only shows it.
  virtual void OperatorClicked(std::size_t index) = 0;
  /// The contents of a text box are now `text`.
  virtual void OperatorTyped(std::size_t index, const std::string& text) = 0;
  virtual void OperatorFocused(std::size_t index) = 0;
  virtual void OperatorHovered(std::size_t index) = 0;
  /// The close box, the system menu or a request to end the task.
  virtual void OperatorClosed() = 0;
};

/// Windows, message boxes and the event loop. All calls come from one thread.
class WindowSystem {
 public:
  virtual ~WindowSystem() = default;

  /// Makes the window at the first call, shows it in the place of the last one (the first one
  /// centred on the screen) and paints it before returning. Raises 7 when no window can be made.
  virtual void ShowForm(FormWindow& form) = 0;
  virtual void HideForm(FormWindow& form) = 0;
  /// A property of the control at `index` has a new value. Also called for forms that are hidden or
  /// not yet shown.
  virtual void UpdateControl(FormWindow& form, std::size_t index, Property changed) = 0;
  /// The form's own caption or pointer has a new value.
  virtual void UpdateForm(FormWindow& form, Property changed) = 0;

  /// A message box with an OK button; returns when it is answered. An empty title means the
  /// application's default title.
  virtual void MessageBox(const std::string& text, const std::string& title) = 0;
  /// The shell's folder browser (file-system folders only, no root given), owned by `owner`.
  /// Returns the full path of the chosen folder, nothing when the operator cancelled; raises the
  /// shell's error.
  virtual std::optional<std::string> BrowseForFolder(FormWindow& owner,
                                                     const std::string& title) = 0;
  /// Loads a picture file. An empty path gives no picture (a null pointer). Raises 53 when the file
  /// is missing, 481 when it is not a picture.
  virtual std::shared_ptr<Picture> LoadPicture(const std::string& path) = 0;
  /// Handles the pending window events and returns.
  virtual void DoEvents() = 0;
  /// Ends the whole process at once.
  [[noreturn]] virtual void EndProgram() = 0;
};

}  // namespace talu
