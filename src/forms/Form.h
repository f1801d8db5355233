#pragma once

#include <functional>
#include <string>
#include <vector>

#include "forms/Controls.h"
#include "platform/WindowSystem.h"
#include "runtime/RuntimeError.h"

namespace talu {

/// A page: a window with controls and event procedures. It is made once and then only hidden and
/// shown again, so its controls keep their contents.
///
/// Every event procedure is independent: a run-time error that it does not catch ends the program
/// (`EndWithErrorBox`) and never reaches the procedure that caused the event.
///
/// While the procedure of a click runs and lets window events through, further clicks on the same
/// page are refused, so that its work is never started twice and the page is never left in the
/// middle. Closing it is not refused.
class Form : public FormWindow {
 public:
  /// Sizes are those of the client area, in twips.
  Form(WindowSystem& windows, std::string name, int width, int height);
  Form(const Form&) = delete;
  Form& operator=(const Form&) = delete;

  /// Runs Form_Load at the first showing, shows the window, then runs Form_Activate.
  void Show();
  void Hide();

  const std::string& Caption() const { return caption_; }
  void Caption(const std::string& caption);
  /// 0 is the default pointer, 11 the hourglass.
  void MousePointer(int pointer);

  /// Runs an event procedure.
  void RunProcedure(const std::function<void()>& procedure);

  const std::string& WindowName() const override { return name_; }
  const std::string& WindowCaption() const override { return caption_; }
  int WindowPointer() const override { return pointer_; }
  int WindowWidth() const override { return width_; }
  int WindowHeight() const override { return height_; }
  std::size_t ControlCount() const override { return controls_.size(); }
  const ControlView& ControlAt(std::size_t index) const override;
  void OperatorClicked(std::size_t index) override;
  void OperatorTyped(std::size_t index, const std::string& text) override;
  void OperatorFocused(std::size_t index) override;
  void OperatorHovered(std::size_t index) override;
  void OperatorClosed() override;

 protected:
  virtual void Form_Load() {}
  virtual void Form_Activate() {}
  virtual void Form_QueryUnload() {}

  WindowSystem& windows_;

 private:
  friend class Control;
  friend class OptionButton;

  std::size_t Add(Control& control);
  void ControlChanged(std::size_t index, Property property);
  void ClearOtherOptions(const OptionButton& selected);

  std::string name_;
  std::string caption_ = "Form1";
  int width_;
  int height_;
  int pointer_ = 0;
  bool loaded_ = false;
  bool clicked_ = false;
  std::vector<Control*> controls_;
};

/// Shows the platform's error box for an uncaught error and ends the program.
void EndWithErrorBox(WindowSystem& windows, const RuntimeError& error);

/// Runs `procedure`; an error that it does not catch ends the program.
void RunToTheEnd(WindowSystem& windows, const std::function<void()>& procedure);

}  // namespace talu
