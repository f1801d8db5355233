#include "forms/Form.h"

#include <utility>

#include "runtime/TextFunctions.h"

namespace talu {

Form::Form(WindowSystem& windows, std::string name, int width, int height)
    : windows_(windows), name_(std::move(name)), width_(width), height_(height) {}

void Form::Show() {
  if (!loaded_) {
    loaded_ = true;
    RunProcedure([this] { Form_Load(); });
  }
  // The page before is already hidden: without this one the screen would be empty.
  RunProcedure([this] { windows_.ShowForm(*this); });
  RunProcedure([this] { Form_Activate(); });
}

void Form::Hide() {
  windows_.HideForm(*this);
}

void Form::Caption(const std::string& caption) {
  if (caption_ == caption) return;
  caption_ = caption;
  windows_.UpdateForm(*this, Property::Caption);
}

void Form::MousePointer(int pointer) {
  if (pointer_ == pointer) return;
  pointer_ = pointer;
  windows_.UpdateForm(*this, Property::MousePointer);
}

void Form::RunProcedure(const std::function<void()>& procedure) {
  RunToTheEnd(windows_, procedure);
}

const ControlView& Form::ControlAt(std::size_t index) const {
  return controls_.at(index)->View();
}

void Form::OperatorClicked(std::size_t index) {
  const ControlView& view = ControlAt(index);
  if (clicked_ || !view.Enabled || !view.Visible) return;
  clicked_ = true;
  controls_.at(index)->OperatorClicked();
  clicked_ = false;
}

void Form::OperatorTyped(std::size_t index, const std::string& text) {
  controls_.at(index)->OperatorTyped(text);
}

void Form::OperatorFocused(std::size_t index) {
  controls_.at(index)->OperatorFocused();
}

void Form::OperatorHovered(std::size_t index) {
  controls_.at(index)->OperatorHovered();
}

void Form::OperatorClosed() {
  RunProcedure([this] { Form_QueryUnload(); });
}

std::size_t Form::Add(Control& control) {
  controls_.push_back(&control);
  return controls_.size() - 1;
}

void Form::ControlChanged(std::size_t index, Property property) {
  windows_.UpdateControl(*this, index, property);
}

void Form::ClearOtherOptions(const OptionButton& selected) {
  for (Control* control : controls_) {
    if (control == &selected || control->view_.Kind != ControlKind::OptionButton) continue;
    if (!control->view_.Value) continue;
    control->view_.Value = false;
    ControlChanged(control->index_, Property::Value);
  }
}

void EndWithErrorBox(WindowSystem& windows, const RuntimeError& error) {
  windows.MessageBox(
      "Run-time error '" + std::to_string(error.Number) + "':\r\n\r\n" + error.Description, "");
  windows.EndProgram();
}

void RunToTheEnd(WindowSystem& windows, const std::function<void()>& procedure) {
  try {
    procedure();
  } catch (...) {
    EndWithErrorBox(windows, CaughtError());
  }
}

}  // namespace talu
