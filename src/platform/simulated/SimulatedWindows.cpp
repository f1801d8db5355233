#include "platform/simulated/SimulatedWindows.h"

#include <array>
#include <utility>

#include "runtime/RuntimeError.h"

namespace talu {
namespace {

class SimulatedPicture : public Picture {
 public:
  explicit SimulatedPicture(std::string path) : Path(std::move(path)) {}
  const std::string Path;
};

JournalEvent SetEvent(const FormWindow& form, const std::string& control, const char* property,
                      JournalEvent::Value value) {
  return {"set",
          {{"form", form.WindowName()},
           {"control", control},
           {"property", std::string(property)},
           {"value", std::move(value)}}};
}

std::int64_t Number(int value) {
  return value;
}

}  // namespace

void SimulatedWindows::ShowForm(FormWindow& form) {
  journal_.Request({"show", {{"form", form.WindowName()}}}, false, [&] { visible_ = &form; });
}

void SimulatedWindows::HideForm(FormWindow& form) {
  journal_.Add({"hide", {{"form", form.WindowName()}}});
  if (visible_ == &form) visible_ = nullptr;
}

void SimulatedWindows::UpdateControl(FormWindow& form, std::size_t index, Property changed) {
  const ControlView& view = form.ControlAt(index);
  const auto add = [&](const char* property, JournalEvent::Value value) {
    journal_.Add(SetEvent(form, view.Name, property, std::move(value)));
  };
  switch (changed) {
    case Property::Caption:
      return add("Caption", view.Text);
    case Property::Text:
      return add("Text", view.Text);
    case Property::Enabled:
      return add("Enabled", view.Enabled);
    case Property::Visible:
      return add("Visible", view.Visible);
    case Property::Value:
      return add("Value", view.Value);
    case Property::Width:
      return add("Width", Number(view.Width));
    case Property::ToolTipText:
      return add("ToolTipText", view.ToolTipText);
    case Property::Picture: {
      const auto* picture = dynamic_cast<const SimulatedPicture*>(view.Picture.get());
      return add("Picture", picture != nullptr ? picture->Path : std::string());
    }
    case Property::Selection:
      return add("Selection", Number(view.SelLength));
    case Property::MousePointer:
      break;
  }
}

void SimulatedWindows::UpdateForm(FormWindow& form, Property changed) {
  if (changed == Property::Caption) {
    journal_.Add(SetEvent(form, "", "Caption", form.WindowCaption()));
  } else {
    journal_.Add(SetEvent(form, "", "MousePointer", Number(form.WindowPointer())));
  }
}

void SimulatedWindows::MessageBox(const std::string& text, const std::string& title) {
  messages_.push_back(text);
  journal_.Add({"msgbox", {{"text", text}, {"title", title}}});
}

std::optional<std::string> SimulatedWindows::BrowseForFolder(FormWindow&,
                                                             const std::string& title) {
  journal_.Count("browse", title);
  if (BrowseError) throw RuntimeError(*std::exchange(BrowseError, std::nullopt));
  if (BrowseAnswers.empty()) return std::nullopt;
  std::optional<std::string> answer = BrowseAnswers.front();
  BrowseAnswers.pop_front();
  return answer;
}

std::shared_ptr<Picture> SimulatedWindows::LoadPicture(const std::string& path) {
  if (path.empty()) return nullptr;
  journal_.Count("picture", path);
  SimulatedDisk::Node* node = disk_.Find(path);
  if (node == nullptr || node->IsFolder) throw RuntimeError(error::kFileNotFound);
  std::array<char, 2> start{};
  node->Content->Read(0, start.data(), start.size());
  const std::string_view magic(start.data(), start.size());
  if (magic != "\xFF\xD8" && magic != "BM" && magic != "GI") {
    throw RuntimeError(error::kInvalidPicture);
  }
  return std::make_shared<SimulatedPicture>(path);
}

void SimulatedWindows::EndProgram() {
  journal_.Add({"end", {}});
  throw ProgramEnded{};
}

template <class Act>
bool SimulatedWindows::Do(const std::string& control, Act act) {
  if (visible_ == nullptr || ended_) return false;
  for (std::size_t index = 0; index < visible_->ControlCount(); ++index) {
    const ControlView& view = visible_->ControlAt(index);
    if (view.Name != control) continue;
    if (!view.Enabled || !view.Visible) return false;
    Run([&] { act(*visible_, index); });
    return true;
  }
  return false;
}

bool SimulatedWindows::Click(const std::string& control) {
  return Do(control, [](FormWindow& form, std::size_t index) { form.OperatorClicked(index); });
}

bool SimulatedWindows::Type(const std::string& control, const std::string& text) {
  return Do(control, [&](FormWindow& form, std::size_t index) { form.OperatorTyped(index, text); });
}

bool SimulatedWindows::Hover(const std::string& control) {
  return Do(control, [](FormWindow& form, std::size_t index) { form.OperatorHovered(index); });
}

bool SimulatedWindows::Focus(const std::string& control) {
  return Do(control, [](FormWindow& form, std::size_t index) { form.OperatorFocused(index); });
}

void SimulatedWindows::Close() {
  if (visible_ != nullptr) Run([&] { visible_->OperatorClosed(); });
}

std::string SimulatedWindows::VisibleForm() const {
  return visible_ != nullptr && !ended_ ? visible_->WindowName() : "";
}

const ControlView* SimulatedWindows::Shown(const std::string& control) const {
  for (std::size_t index = 0; visible_ != nullptr && index < visible_->ControlCount(); ++index) {
    if (visible_->ControlAt(index).Name == control) return &visible_->ControlAt(index);
  }
  return nullptr;
}

}  // namespace talu
