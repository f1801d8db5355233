// What the last page runs: every deployment step, in order. A failing step is logged and never
// stops the later ones.

#include "deploy/Deployment.h"
#include "deploy/MdlCommon.h"
#include "runtime/ErrorTrap.h"
#include "startup/InstallContext.h"

namespace talu {

void Deployment::RunDeployment() {
  const ErrorTrap step([this](const RuntimeError& error) { install_.WriteErrorEntry(error); });
  step([&] { CreateSystemDSNs(); });
  view_.Status.Caption = "Started Copying files. Please wait....";
  step([&] { install_.WriteErrLog("Started Copying files..."); });
  install_.Machine.Windows.DoEvents();
  const std::string application = install_.Machine.AppPath + "\\Application";
  if (install_.Machine.Files.FolderExists(application)) {
    step([&] { CopyFolderTree(install_, view_, application, install_.State.AppFolderPath); });
    step([&] { view_.Bar.Width = view_.Bar.Width + ProgressShare(StepWeight * 10); });
    const std::string copied = "File copying finished Successfully....";
    view_.Status.Caption = copied;
    step([&] { install_.WriteErrLog(copied); });
    step([&] { FileRegistration(); });
    step([&] { SpecialRegistration(); });
    step([&] { Shotcuts(); });
  } else {
    const std::string notFound = "Folder 'Aplication' Not found in the pack....";
    view_.Status.Caption = notFound;
    step([&] { install_.WriteErrLog(notFound); });
  }
  step([&] { WriteSettings(); });
  step([&] { RunAddOns(); });
  step([&] { ShowFinalMsg(); });
  view_.Bar.Width = kProgressWidth;
  view_.Note.Caption = "";
  view_.Next.Enabled = true;
}

}  // namespace talu
