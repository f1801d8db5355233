#pragma once

#include <functional>
#include <string>
#include <vector>

#include "platform/WindowSystem.h"

namespace talu {

/// A page with one of everything, as large as a real one. Like a form it keeps the state itself and
/// has the window show it.
class SamplePage : public FormWindow {
 public:
  explicit SamplePage(WindowSystem& windows, std::string name = "FrmSample");

  ControlView& operator[](const std::string& name);
  std::size_t IndexOf(const std::string& name) const;
  /// Has the window show a changed property.
  void Changed(const std::string& name, Property property);

  const std::string& WindowName() const override { return name_; }
  const std::string& WindowCaption() const override { return caption_; }
  int WindowPointer() const override { return Pointer; }
  int WindowWidth() const override { return 9000; }
  int WindowHeight() const override { return 6300; }
  std::size_t ControlCount() const override { return controls_.size(); }
  const ControlView& ControlAt(std::size_t index) const override { return controls_[index]; }

  void OperatorClicked(std::size_t index) override;
  void OperatorTyped(std::size_t index, const std::string& text) override;
  void OperatorFocused(std::size_t index) override;
  void OperatorHovered(std::size_t index) override;
  void OperatorClosed() override;

  int Pointer = 0;
  /// What the operator did, as "click CmdNext", "type TxtPath text", "close".
  std::vector<std::string> Doings;
  /// Runs inside the click of any control.
  std::function<void()> OnClick = [] {};

 private:
  ControlView& Add(ControlKind kind, const char* name, int left, int top, int width, int height,
                   const char* text = "", TextStyle style = TextStyle::Body);

  WindowSystem& windows_;
  std::string name_;
  std::string caption_ = "Sample Product";
  std::vector<ControlView> controls_;
};

}  // namespace talu
