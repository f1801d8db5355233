#pragma once

#include "pages/WizardPage.h"

namespace talu {

/// The first page: fresh, demo or upgrade. Offers the types for which the pack lists scripts.
class FrmType : public WizardPage {
 public:
  explicit FrmType(Pages& pages);

  OptionButton OptFresh{*this, "OptFresh", "LblFresh", layout::Mark(layout::kLeft, 1200)};
  Label LblFresh{*this, "LblFresh", "Fresh Installation", TextStyle::Label, layout::Text(1200)};
  Label LblFreshdescription{*this, "LblFreshdescription",
                            "Select this option for new installation.", TextStyle::Body,
                            layout::Text(1440)};
  OptionButton OptDemo{*this, "OptDemo", "LblDemo", layout::Mark(layout::kLeft, 1920)};
  Label LblDemo{*this, "LblDemo", "Demo Installation", TextStyle::Label, layout::Text(1920)};
  Label LblDemoDescription{*this, "LblDemoDescription", "Select this option for Demo installation.",
                           TextStyle::Body, layout::Text(2160)};
  OptionButton OptUpgrade{*this, "OptUpgrade", "LblUpgrade", layout::Mark(layout::kLeft, 2640)};
  Label LblUpgrade{*this, "LblUpgrade", "Upgradation", TextStyle::Label, layout::Text(2640)};
  Label LblUpgradeDescription{*this, "LblUpgradeDescription",
                              "Select this option if an installation already exists",
                              TextStyle::Body, layout::Text(2880)};
  CheckBox ChkOldLocation{*this, "ChkOldLocation", "Check1", "LblOldLocation",
                          layout::Mark(layout::kIndent, 3360)};
  Label LblOldLocation{*this,
                       "LblOldLocation",
                       "Tick here to select the existing application folder",
                       TextStyle::Body,
                       {layout::kIndent + 360, 3360, layout::kIndentWidth - 360, layout::kLine}};
  TextBox TxtInstaPath{*this, "TxtInstaPath", "LblOldLocation",
                       layout::FolderBox(layout::kIndent + 360, 3720)};
  CommandButton CmdLocation{*this, "CmdLocation", "...", layout::FolderButton(3720)};

  Label LblMsg{*this, "LblMsg", "", TextStyle::Status, layout::kStatus};
  Shape ShpProgBase{*this, "ShpProgBase", Shape::Track, layout::kTrack};
  Shape ShpProgBar{*this, "ShpProgBar", Shape::Bar, layout::Bar(ProgressShare(1))};
  Label LblNotRes{*this, "LblNotRes", kNotResponding, TextStyle::Note, layout::kNote};
  CommandButton CmdNext{*this, "CmdNext", "&Next", layout::kNext};

 protected:
  void Form_Load() override;
  void Form_Activate() override;

 private:
  void OptFresh_Click();
  void OptUpgrade_Click();
  void ChkOldLocation_Click();
  void CmdLocation_Click();
  void CmdNext_Click();

  /// Enables the type's controls when the pack lists scripts under `key`.
  void Offer(std::string_view key, OptionButton& option, Label& label, Label& description);
  void ShowOldLocationBox(bool visible);
  void ShowOldLocationPath(bool visible);

  bool preselected_ = false;
};

}  // namespace talu
