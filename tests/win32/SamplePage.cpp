#include "SamplePage.h"

#include <stdexcept>
#include <utility>

namespace talu {

SamplePage::SamplePage(WindowSystem& windows, std::string name)
    : windows_(windows), name_(std::move(name)) {
  controls_.reserve(32);
  Add(ControlKind::Image, "ImgBack", 0, 0, 9000, 6300);
  Add(ControlKind::Label, "LblTitleMsg", 840, 480, 7325, 420, "Select Installation type",
      TextStyle::Title);
  Add(ControlKind::Label, "LblFresh", 1260, 1080, 2400, 300, "&Fresh installation",
      TextStyle::Label)
      .Mnemonic = true;
  Add(ControlKind::Label, "LblDemo", 1260, 1440, 2400, 300, "Demo & tour", TextStyle::Label);
  Add(ControlKind::Label, "LblDemoInfo", 3720, 1080, 4445, 600,
      "Everything is installed with a few hundred sample records, so that you can look around.");
  Add(ControlKind::OptionButton, "OptFresh", 840, 1065, 330, 270).LabelledBy = "LblFresh";
  Add(ControlKind::OptionButton, "OptDemo", 840, 1425, 330, 270).LabelledBy = "LblDemo";
  Add(ControlKind::OptionButton, "OptUpgrade", 3720, 1860, 4445, 270, "Upgradation").Enabled =
      false;
  Add(ControlKind::CheckBox, "ChkOldLocation", 840, 1860, 2700, 270, "&Use the old location");
  Add(ControlKind::Label, "LblPath", 840, 2310, 2000, 240, "Installation &Location",
      TextStyle::Label)
      .Mnemonic = true;
  Add(ControlKind::TextBox, "TxtPath", 840, 2580, 5400, 345, "C:\\Program Files\\TA-LU\\Sales");
  Add(ControlKind::CommandButton, "CmdLocation", 6360, 2550, 1805, 405, "&Browse...");
  Add(ControlKind::TextBox, "TxtPsWord", 840, 3060, 2400, 345, "secret").Password = true;
  ControlView& server = Add(ControlKind::TextBox, "TxtServer", 3360, 3060, 2400, 345, "SRV1");
  server.Enabled = false;
  Add(ControlKind::Label, "LblFinalMsg", 840, 3540, 7325, 780,
      "\rFirst read the closing instructions.\rThen restart the machine.\rSign in as before.\r"
      "Open the product from the start menu.\rCall us if anything is missing.")
      .Scrolls = true;
  Add(ControlKind::Label, "LblMsg", 840, 4500, 7325, 240,
      "Copying - C:\\Program Files\\TA-LU\\Sales\\Reports\\Quarterly\\Templates\\Overview of all "
      "regions and branches.rpt",
      TextStyle::Status);
  Add(ControlKind::Shape, "ShpProgBase", 840, 4860, 7325, 150);
  Add(ControlKind::Shape, "ShpProgBar", 840, 4860, 2930, 150).Bar = true;
  Add(ControlKind::Label, "LblNotRes", 840, 5280, 4300, 420,
      "Note: During installation wizard may appear as not responding, Please wait ...",
      TextStyle::Note);
  Add(ControlKind::CommandButton, "CmdPrev", 5405, 5280, 1320, 420, "&Back");
  Add(ControlKind::CommandButton, "CmdNext", 6845, 5280, 1320, 420, "&Next").Default = true;
}

ControlView& SamplePage::Add(ControlKind kind, const char* name, int left, int top, int width,
                             int height, const char* text, TextStyle style) {
  ControlView& view = controls_.emplace_back();
  view.Kind = kind;
  view.Name = name;
  view.Left = left;
  view.Top = top;
  view.Width = width;
  view.Height = height;
  view.Text = text;
  view.Style = style;
  return view;
}

std::size_t SamplePage::IndexOf(const std::string& name) const {
  for (std::size_t i = 0; i < controls_.size(); ++i) {
    if (controls_[i].Name == name) return i;
  }
  throw std::invalid_argument(name);
}

ControlView& SamplePage::operator[](const std::string& name) {
  return controls_[IndexOf(name)];
}

void SamplePage::Changed(const std::string& name, Property property) {
  windows_.UpdateControl(*this, IndexOf(name), property);
}

void SamplePage::OperatorClicked(std::size_t index) {
  ControlView& clicked = controls_[index];
  Doings.push_back("click " + clicked.Name);
  if (clicked.Kind == ControlKind::OptionButton) {
    for (ControlView& view : controls_) {
      if (view.Kind != ControlKind::OptionButton || view.Value == (&view == &clicked)) continue;
      view.Value = &view == &clicked;
      Changed(view.Name, Property::Value);
    }
  } else if (clicked.Kind == ControlKind::CheckBox) {
    clicked.Value = !clicked.Value;
    Changed(clicked.Name, Property::Value);
  }
  OnClick();
}

void SamplePage::OperatorTyped(std::size_t index, const std::string& text) {
  controls_[index].Text = text;
  Doings.push_back("type " + controls_[index].Name + " " + text);
}

void SamplePage::OperatorFocused(std::size_t index) {
  Doings.push_back("focus " + controls_[index].Name);
}

void SamplePage::OperatorHovered(std::size_t index) {
  ControlView& view = controls_[index];
  view.ToolTipText = view.Text;
}

void SamplePage::OperatorClosed() {
  Doings.push_back("close");
}

}  // namespace talu
