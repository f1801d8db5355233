#include "pages/FrmType.h"

#include "database/TypeScripts.h"
#include "pages/FrmMode.h"
#include "pages/Pages.h"
#include "startup/InstallContext.h"

namespace talu {

FrmType::FrmType(Pages& pages) : WizardPage(pages, "FrmType", "Select Installation type") {
  CmdNext.AsDefault();
  CmdLocation.LabelledBy("LblOldLocation");
  OptFresh.Click = [this] { OptFresh_Click(); };
  OptUpgrade.Click = [this] { OptUpgrade_Click(); };
  ChkOldLocation.Click = [this] { ChkOldLocation_Click(); };
  CmdLocation.Click = [this] { CmdLocation_Click(); };
  CmdNext.Click = [this] { CmdNext_Click(); };
}

void FrmType::Form_Load() {
  LblNotRes.Caption = "";
  SetUpFrame();
  ShowOldLocationBox(false);
  ShowOldLocationPath(false);
  install_.State.UseOldLocation = false;
  install_.State.OldInstallationFound = false;
}

void FrmType::Form_Activate() {
  if (install_.State.OldInstallationFound) {
    TxtInstaPath.Text = install_.State.AppFolderPath;
    OptUpgrade.Value = true;
    ChkOldLocation.Value = true;
    LblOldLocation.Caption = "Old Installation Path";
    LblTitleMsg.Caption = "Old installation found, You can proceed with upgradation...";
  }
  Offer(kTypeScripts[0].Key, OptFresh, LblFresh, LblFreshdescription);
  Offer(kTypeScripts[1].Key, OptDemo, LblDemo, LblDemoDescription);
  Offer(kTypeScripts[2].Key, OptUpgrade, LblUpgrade, LblUpgradeDescription);

  if (preselected_) return;
  preselected_ = true;
  for (OptionButton* option : {&OptFresh, &OptDemo, &OptUpgrade}) {
    if (!option->Enabled) continue;
    option->Value = true;
    return;
  }
}

void FrmType::Offer(std::string_view key, OptionButton& option, Label& label, Label& description) {
  const bool listed = install_.GetCfgCount(std::string(key)) > 0;
  option.Enabled = listed;
  label.Enabled = listed;
  description.Enabled = listed;
}

void FrmType::ShowOldLocationBox(bool visible) {
  ChkOldLocation.Visible = visible;
  LblOldLocation.Visible = visible;
}

void FrmType::ShowOldLocationPath(bool visible) {
  TxtInstaPath.Visible = visible;
  CmdLocation.Visible = visible;
}

// The tick and `UseOldLocation` stay unchanged.
void FrmType::OptFresh_Click() {
  ShowOldLocationBox(false);
  ShowOldLocationPath(false);
}

void FrmType::OptUpgrade_Click() {
  ShowOldLocationBox(true);
  ShowOldLocationPath(ChkOldLocation.Value);
}

void FrmType::ChkOldLocation_Click() {
  ShowOldLocationPath(ChkOldLocation.Value);
  install_.State.UseOldLocation = ChkOldLocation.Value;
}

void FrmType::CmdLocation_Click() {
  try {
    const auto folder = windows_.BrowseForFolder(*this, "Select Old Installation Folder");
    if (!folder) return;
    install_.State.OldInstallPath = *folder;
    TxtInstaPath.Text = install_.State.OldInstallPath;
  } catch (...) {
    CaughtError();
  }
}

void FrmType::CmdNext_Click() {
  if (OptFresh.Value) {
    install_.State.SetupType = 0;
  } else if (OptDemo.Value) {
    install_.State.SetupType = 1;
  } else if (OptUpgrade.Value) {
    install_.State.SetupType = 2;
  }
  Hide();
  pages_.Page<FrmMode>().Show();
}

}  // namespace talu
