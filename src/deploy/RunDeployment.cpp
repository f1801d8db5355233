// The driver of the last page: every deployment step, in order. A failing step is logged and never
// stops the later ones.

#include "deploy/MdlCommon.h"
#include "pages/FrmApplication.h"
#include "runtime/ErrorTrap.h"
#include "startup/Wizard.h"

namespace talu {

void FrmApplication::RunDeployment() {
  const ErrorTrap step([this](const RuntimeError& error) { wizard_.WriteErrorEntry(error); });
  step([&] { CreateSystemDSNs(); });
  Lblmsg.Caption = "Started Copying files. Please wait....";
  step([&] { wizard_.WriteErrLog("Started Copying files..."); });
  windows_.DoEvents();
  const std::string application = wizard_.Machine.AppPath + "\\Application";
  if (wizard_.Machine.Files.FolderExists(application)) {
    step([&] { CopyFolderTree(wizard_, application, wizard_.State.AppFolderPath); });
    step([&] { ShpProgBar.Width = ShpProgBar.Width + ProgressShare(StepWeight * 10); });
    const std::string copied = "File copying finished Successfully....";
    Lblmsg.Caption = copied;
    step([&] { wizard_.WriteErrLog(copied); });
    step([&] { FileRegistration(); });
    step([&] { SpecialRegistration(); });
    step([&] { Shotcuts(); });
  } else {
    const std::string notFound = "Folder 'Aplication' Not found in the pack....";
    Lblmsg.Caption = notFound;
    step([&] { wizard_.WriteErrLog(notFound); });
  }
  step([&] { WriteSettings(); });
  step([&] { RunAddOns(); });
  step([&] { ShowFinalMsg(); });
  ShpProgBar.Width = kProgressWidth;
  LblNotRes.Caption = "";
  CmdNext.Enabled = true;
}

}  // namespace talu
