#include "pages/FrmMode.h"

#include "pages/FrmAuthentication.h"
#include "pages/FrmLocation.h"
#include "pages/FrmType.h"
#include "pages/Pages.h"
#include "startup/InstallContext.h"

namespace talu {

FrmMode::FrmMode(Pages& pages) : WizardPage(pages, "FrmMode", "Select Installation mode") {
  CmdNext.AsDefault();
  CmdNext.Click = [this] { CmdNext_Click(); };
  CmdPrev.Click = [this] { CmdPrev_Click(); };
}

void FrmMode::Form_Load() {
  if (install_.State.Mode == 0) {
    OptServer.Value = true;
  } else if (install_.State.Mode == 1) {
    OptClient.Value = true;
  }
  LblNotRes.Caption = "";
  SetUpFrame();
}

void FrmMode::CmdNext_Click() {
  if (OptServer.Value) {
    install_.State.Mode = 0;
  } else if (OptClient.Value) {
    install_.State.Mode = 1;
  }
  Hide();
  if (install_.State.Mode == 0) {
    pages_.Page<FrmAuthentication>().Show();
  } else if (install_.State.Mode == 1) {
    pages_.Page<FrmLocation>().Show();
  }
}

void FrmMode::CmdPrev_Click() {
  Hide();
  pages_.Page<FrmType>().Show();
}

}  // namespace talu
