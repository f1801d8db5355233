#include "pages/FrmMode.h"

#include "pages/FrmAuthentication.h"
#include "pages/FrmLocation.h"
#include "pages/FrmType.h"
#include "startup/Wizard.h"

namespace talu {

FrmMode::FrmMode(Wizard& wizard) : WizardPage(wizard, "FrmMode", "Select Installation mode") {
  CmdNext.AsDefault();
  CmdNext.Click = [this] { CmdNext_Click(); };
  CmdPrev.Click = [this] { CmdPrev_Click(); };
}

void FrmMode::Form_Load() {
  if (wizard_.State.Mode == 0) {
    OptServer.Value = true;
  } else if (wizard_.State.Mode == 1) {
    OptClient.Value = true;
  }
  LblNotRes.Caption = "";
  SetUpFrame();
}

void FrmMode::CmdNext_Click() {
  if (OptServer.Value) {
    wizard_.State.Mode = 0;
  } else if (OptClient.Value) {
    wizard_.State.Mode = 1;
  }
  Hide();
  if (wizard_.State.Mode == 0) {
    wizard_.Page<FrmAuthentication>().Show();
  } else if (wizard_.State.Mode == 1) {
    wizard_.Page<FrmLocation>().Show();
  }
}

void FrmMode::CmdPrev_Click() {
  Hide();
  wizard_.Page<FrmType>().Show();
}

}  // namespace talu
