#include "pages/FrmApplication.h"

#include "startup/Wizard.h"

namespace talu {

FrmApplication::FrmApplication(Wizard& wizard)
    : WizardPage(wizard, "FrmApplication", "Application Installation") {
  LblFinalMsg.Scrolling();
  CmdNext.AsDefault();
  CmdNext.Click = [this] { CmdNext_Click(); };
}

FrmApplication::~FrmApplication() = default;

void FrmApplication::Form_Load() {
  SetUpFrame();
  CmdNext.Enabled = false;
  if (wizard_.State.Mode != 0) {
    ShpProgBar.Width = ProgressShare(20);
    StepWeight = 4;
  } else {
    ShpProgBar.Width = ProgressShare(80);
    StepWeight = 1;
  }
}

void FrmApplication::Form_Activate() {
  RunDeployment();
  Lblmsg.Caption = "Installation finished. Click Finish to Exit.";
  wizard_.WriteErrLog("Installation finished.");
}

void FrmApplication::CmdNext_Click() {
  windows_.EndProgram();
}

}  // namespace talu
