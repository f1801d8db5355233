#include "pages/FrmLocation.h"

#include <optional>

#include "deploy/MdlCommon.h"
#include "pages/FrmApplication.h"
#include "pages/FrmAuthentication.h"
#include "pages/FrmMode.h"
#include "pages/FrmSQLNonQuery.h"
#include "pages/Pages.h"
#include "runtime/ErrorTrap.h"
#include "runtime/TextFunctions.h"
#include "startup/BackupFolder.h"
#include "startup/InstallContext.h"

namespace talu {

FrmLocation::FrmLocation(Pages& pages)
    : WizardPage(pages, "FrmLocation", "Select Location and Server[Server in client mode only]") {
  CmdNext.AsDefault();
  CmdLocation.LabelledBy("Label1");
  CmdLocation.Click = [this] { CmdLocation_Click(); };
  CmdNext.Click = [this] { CmdNext_Click(); };
  CmdPrev.Click = [this] { CmdPrev_Click(); };
  TxtInstaPath.Change = [this] { TxtInstaPath_Change(); };
  TxtInstaPath.MouseMove = [this] { TxtInstaPath_MouseMove(); };
  TxtServer.Change = [this] { TxtServer_Change(); };
  TxtServer.GotFocus = [this] { TxtServer_GotFocus(); };
}

void FrmLocation::Form_Load() {
  InstallState& state = install_.State;
  TxtInstaPath.Text = state.AppFolderPath;
  if (state.Mode == 1) TxtServer.Text = state.ServerName;
  SetUpFrame();
  if (state.InstallPath.empty() || state.ServerName.empty()) CmdNext.Enabled = false;
  ShpProgBar.Width = ProgressShare(6);
  LblNotRes.Caption = "";
  const bool client = state.Mode == 1;
  LblTitleMsg.Caption = client ? "Select Location and Server" : "Select Location ";
  LblServer.Visible = client;
  TxtServer.Visible = client;
  LblServerInfo.Visible = client;
  if (state.SetupType == 2 && state.UseOldLocation) {
    ReadFolderNames();
    state.InstallPath = state.OldInstallPath;
    AddProductFolder();
    TxtInstaPath.Text = state.InstallPath;
    SetApplicationFolder();
  }
  ShpProgBase.Visible = false;
  ShpProgBar.Visible = false;
}

void FrmLocation::ReadFolderNames() {
  install_.State.DBFolderName = install_.GetCfgValue("DBFolder", 1);
  install_.State.AppFolderName = install_.GetCfgValue("AppFolder", 1);
}

// Tests whether the folder occurs anywhere in the path, not whether the path ends with it.
void FrmLocation::AddProductFolder() {
  std::string& path = install_.State.InstallPath;
  if (Right(path, 1) == "\\") {
    if (!Contains(path, "TA-LU\\")) path += "TA-LU";
  } else {
    if (!Contains(path, "\\TA-LU")) path += "\\TA-LU";
  }
}

void FrmLocation::SetApplicationFolder() {
  const std::string& path = install_.State.InstallPath;
  const std::string& name = install_.State.AppFolderName;
  if (Right(path, 1) == "\\") {
    if (!Contains(path, name + "\\")) TxtInstaPath.Text = path + name;
  } else {
    if (!Contains(path, "\\" + name)) TxtInstaPath.Text = path + "\\" + name;
  }
}

void FrmLocation::CmdLocation_Click() {
  InstallState& state = install_.State;
  const ErrorTrap step([this](const RuntimeError& error) {
    windows_.MessageBox(std::to_string(error.Number) + "/" + error.Description + "/" + error.Source,
                        "");
    install_.State.InstallPath.clear();
    TxtInstaPath.Text = "";
  });
  step.Assign(state.DBFolderName, [&] { return install_.GetCfgValue("DBFolder", 1); });
  step.Assign(state.AppFolderName, [&] { return install_.GetCfgValue("AppFolder", 1); });
  std::optional<std::string> folder;
  step.Assign(folder,
              [&] { return windows_.BrowseForFolder(*this, "Select Installation Folder"); });
  if (!folder) return;
  state.InstallPath = *folder;
  AddProductFolder();
  TxtInstaPath.Text = state.InstallPath;
  SetApplicationFolder();
  // The box may read as before, which is no change.
  EnableNextWhenFilled();
}

void FrmLocation::TxtInstaPath_Change() {
  EnableNextWhenFilled();
}

void FrmLocation::TxtInstaPath_MouseMove() {
  TxtInstaPath.ToolTipText = TxtInstaPath.Text;
}

void FrmLocation::TxtServer_Change() {
  if (install_.State.Mode == 1) install_.State.ServerName = Trim(TxtServer.Text.Get());
  EnableNextWhenFilled();
}

void FrmLocation::TxtServer_GotFocus() {
  TxtServer.SelStart = 0;
  TxtServer.SelLength = static_cast<int>(Length(TxtServer.Text.Get()));
}

// Never disables the button: clearing the box leaves it as it was.
void FrmLocation::EnableNextWhenFilled() {
  if (!TrimView(TxtInstaPath.Text.Get()).empty() && !install_.State.ServerName.empty()) {
    CmdNext.Enabled = true;
  }
}

void FrmLocation::CmdPrev_Click() {
  Hide();
  if (install_.State.Mode == 0) {
    pages_.Page<FrmAuthentication>().Show();
  } else if (install_.State.Mode == 1) {
    pages_.Page<FrmMode>().Show();
  }
}

void FrmLocation::CmdNext_Click() {
  InstallState& state = install_.State;
  try {
    CmdNext.Enabled = false;
    ShpProgBase.Visible = true;
    ShpProgBar.Visible = true;
    if (state.Mode == 1) state.ServerName = Trim(TxtServer.Text.Get());
    PrepareFolders();
    install_.WriteErrLog("Installation Started...\r\nApplication Folder created-" +
                         state.AppFolderPath);
    install_.WriteErrLog("AppFolder created :" + state.AppFolderPath);
    install_.WriteErrLog("DBFolder created :" + state.DBFolderPath);
    install_.StartUninstallRecord();
    CmdNext.Enabled = true;
    if (state.ServerName.empty() || state.InstallPath.empty()) return;
    Hide();
    if (state.Mode == 0) {
      pages_.Page<FrmSQLNonQuery>().Show();
    } else if (state.Mode == 1) {
      pages_.Page<FrmApplication>().Show();
    }
  } catch (...) {
    const RuntimeError error = CaughtError();
    if (error.Number == error::kPermissionDenied) {
      const std::string inUse = "Location in use,Please select Another Location...";
      windows_.MessageBox(inUse, "");
      LblMsg.Caption = inUse;
    } else {
      windows_.MessageBox(error.Description, "");
    }
  }
}

void FrmLocation::PrepareFolders() {
  InstallState& state = install_.State;
  FileSystemObject& files = install_.Machine.Files;
  LblMsg.Caption = "Creating installation folders...";
  if (!files.FolderExists(state.InstallPath)) files.CreateFolder(state.InstallPath);
  if (!state.AppFolderName.empty()) {
    state.AppFolderPath = TxtInstaPath.Text;
    if (files.FolderExists(state.AppFolderPath)) {
      install_.ResetErrorLog();
      BackUpApplicationFolder();
    } else {
      LblMsg.Caption = "Creating installation folders...";
      files.CreateFolder(state.AppFolderPath);
      install_.ResetErrorLog();
    }
  }
  if (!state.AppFolderName.empty() && !state.DBFolderName.empty()) {
    state.DBFolderPath = state.AppFolderPath + "\\" + state.DBFolderName;
    if (!files.FolderExists(state.DBFolderPath)) files.CreateFolder(state.DBFolderPath);
  }
}

void FrmLocation::BackUpApplicationFolder() {
  InstallState& state = install_.State;
  FileSystemObject& files = install_.Machine.Files;
  LblMsg.Caption = "Taking Backup of installation folders...";
  MousePointer(11);
  state.BackupFolderPath = BackupFolderFor(state.AppFolderPath, state.AppFolderName);
  if (!files.FolderExists(state.BackupFolderPath)) files.CreateFolder(state.BackupFolderPath);
  // The name is made anew each time: when the minute changes before the copy, the copy's target
  // does not exist and nothing is copied.
  if (!files.FolderExists(DatedBackupFolder())) files.CreateFolder(DatedBackupFolder());
  CopyFolderTree(install_, pages_.Page<FrmApplication>().View,
                 state.UseOldLocation ? state.OldInstallPath : state.AppFolderPath,
                 DatedBackupFolder());
  MousePointer(0);
}

std::string FrmLocation::DatedBackupFolder() const {
  return install_.State.BackupFolderPath + "\\AppFolderBkp_" +
         DateStamp(install_.Machine.Clock.Now());
}

void FrmLocation::AddRegistry() {
  const InstallState& state = install_.State;
  if (state.OldInstallationFound) return;
  const std::string entry =
      "TA-LU , Application , " + state.RegistryValueName + ", " + state.AppFolderPath;
  try {
    install_.WriteErrLog("Trying to add Registry entry: " + entry);
    install_.Machine.Settings.SaveSetting("TA-LU", "Application", state.RegistryValueName,
                                          state.AppFolderPath);
  } catch (...) {
    CaughtError();
    install_.WriteErrLog("Failed to add Registry entry: " + entry);
  }
}

}  // namespace talu
