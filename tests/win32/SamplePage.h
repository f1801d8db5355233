#pragma once

#include <functional>
#include <string>
#include <vector>

#include "forms/Form.h"

namespace talu {

/// A page with one of everything, as large as a real one.
class SamplePage : public Form {
 public:
  explicit SamplePage(WindowSystem& windows, const std::string& name = "FrmSample")
      : Form(windows, name, 9000, 6300) {
    Caption("Sample Product");
    LblFresh.WithMnemonic();
    LblPath.WithMnemonic();
    OptUpgrade.Enabled = false;
    TxtPath.Text = "C:\\Program Files\\TA-LU\\Sales";
    CmdLocation.LabelledBy("LblDemo");
    TxtPsWord.HidingText();
    TxtServer.Enabled = false;
    LblFinalMsg.Scrolling();
    CmdNext.AsDefault();
    (Listen(OptFresh), Listen(OptDemo), Listen(OptUpgrade), Listen(ChkOldLocation));
    (Listen(CmdLocation), Listen(CmdPrev), Listen(CmdNext));
    TxtPath.Change = [this] { Doings.push_back("type TxtPath " + TxtPath.Text.Get()); };
    TxtPath.GotFocus = [this] { Doings.emplace_back("focus TxtPath"); };
    TxtPath.MouseMove = [this] { TxtPath.ToolTipText = TxtPath.Text; };
  }

  Image ImgBack{*this, "ImgBack", {0, 0, 9000, 6300}};
  Label LblTitleMsg{
      *this, "LblTitleMsg", "Select Installation type", TextStyle::Title, {840, 480, 7325, 420}};
  Label LblFresh{
      *this, "LblFresh", "&Fresh installation", TextStyle::Label, {1260, 1080, 2400, 300}};
  Label LblDemo{*this, "LblDemo", "Demo & tour", TextStyle::Label, {1260, 1440, 2400, 300}};
  OptionButton OptFresh{*this, "OptFresh", "LblFresh", {840, 1065, 330, 270}};
  OptionButton OptDemo{*this, "OptDemo", "LblDemo", {840, 1425, 330, 270}};
  OptionButton OptUpgrade{*this, "OptUpgrade", "", {3720, 1860, 4445, 270}};
  CheckBox ChkOldLocation{
      *this, "ChkOldLocation", "&Use the old location", "", {840, 1860, 2700, 270}};
  Label LblPath{
      *this, "LblPath", "Installation &Location", TextStyle::Label, {840, 2310, 2000, 240}};
  TextBox TxtPath{*this, "TxtPath", "LblPath", {840, 2580, 5400, 345}};
  CommandButton CmdLocation{*this, "CmdLocation", "...", {6360, 2550, 1805, 405}};
  TextBox TxtPsWord{*this, "TxtPsWord", "", {840, 3060, 2400, 345}};
  TextBox TxtServer{*this, "TxtServer", "", {3360, 3060, 2400, 345}};
  Label LblFinalMsg{*this,
                    "LblFinalMsg",
                    "\rFirst read the closing instructions.\rThen restart the machine.\r"
                    "Sign in as before.\rOpen the product from the start menu.\r"
                    "Call us if anything is missing.",
                    TextStyle::Body,
                    {840, 3540, 7325, 780}};
  Label LblMsg{*this,
               "LblMsg",
               "Copying - C:\\Program Files\\TA-LU\\Sales\\Reports\\Quarterly\\Templates\\"
               "Overview of all regions and branches.rpt",
               TextStyle::Status,
               {840, 4500, 7325, 240}};
  Shape ShpProgBase{*this, "ShpProgBase", Shape::Track, {840, 4860, 7325, 150}};
  Shape ShpProgBar{*this, "ShpProgBar", Shape::Bar, {840, 4860, 2930, 150}};
  CommandButton CmdPrev{*this, "CmdPrev", "&Back", {5405, 5280, 1320, 420}};
  CommandButton CmdNext{*this, "CmdNext", "&Next", {6845, 5280, 1320, 420}};

  /// What the operator did, as "click CmdNext", "type TxtPath text", "close".
  std::vector<std::string> Doings;
  /// Runs inside the click of any control.
  std::function<void()> OnClick = [] {};

 protected:
  void Form_QueryUnload() override { Doings.emplace_back("close"); }

 private:
  template <class Clickable>
  void Listen(Clickable& control) {
    control.Click = [this, &control] {
      Doings.push_back("click " + control.View().Name);
      OnClick();
    };
  }
};

}  // namespace talu
