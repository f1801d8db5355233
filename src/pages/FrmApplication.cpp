#include "pages/FrmApplication.h"

#include "startup/InstallContext.h"

namespace talu {

FrmApplication::FrmApplication(Pages& pages)
    : WizardPage(pages, "FrmApplication", "Application Installation") {
  LblFinalMsg.Scrolling();
  CmdNext.AsDefault();
  CmdNext.Click = [this] { CmdNext_Click(); };
}

void FrmApplication::Form_Load() {
  SetUpFrame();
  CmdNext.Enabled = false;
  if (install_.State.Mode != 0) {
    ShpProgBar.Width = ProgressShare(20);
    deployment_.StepWeight = 4;
  } else {
    ShpProgBar.Width = ProgressShare(80);
    deployment_.StepWeight = 1;
  }
}

void FrmApplication::Form_Activate() {
  deployment_.RunDeployment();
  Lblmsg.Caption = "Installation finished. Click Finish to Exit.";
  install_.WriteErrLog("Installation finished.");
}

void FrmApplication::CmdNext_Click() {
  windows_.EndProgram();
}

}  // namespace talu
