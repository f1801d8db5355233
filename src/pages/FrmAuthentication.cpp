#include "pages/FrmAuthentication.h"

#include "pages/FrmLocation.h"
#include "pages/FrmMode.h"
#include "pages/Pages.h"
#include "runtime/TextFunctions.h"
#include "startup/InstallContext.h"

namespace talu {

FrmAuthentication::FrmAuthentication(Pages& pages)
    : WizardPage(pages, "FrmAuthentication", "Enter SQL Server Authentication details "),
      AdoObjects(install_.Machine.DataAccess) {
  Label2.WithMnemonic();
  Label3.WithMnemonic();
  TxtPsWord.HidingText();
  CmdNext.AsDefault();
  TxtUsrName.Change = [this] { AnyBox_Change(); };
  TxtPsWord.Change = [this] { AnyBox_Change(); };
  TxtServer.Change = [this] { AnyBox_Change(); };
  CmdNext.Click = [this] { CmdNext_Click(); };
  CmdPrev.Click = [this] { CmdPrev_Click(); };
}

void FrmAuthentication::Form_Load() {
  const InstallState& state = install_.State;
  TxtUsrName.Text = state.SqlUser;
  TxtPsWord.Text = state.SqlPassword;
  TxtServer.Text = state.ServerName;
  wentBack_ = false;
  SetUpFrame();
  // The server's name is not checked here.
  CmdNext.Enabled = !state.SqlPassword.empty() && !state.SqlUser.empty();
  ShpProgBar.Width = ProgressShare(3);
}

// The server's text is not trimmed.
void FrmAuthentication::AnyBox_Change() {
  CmdNext.Enabled = !TrimView(TxtUsrName.Text.Get()).empty() &&
                    !TrimView(TxtPsWord.Text.Get()).empty() && !TxtServer.Text.Get().empty();
}

void FrmAuthentication::CmdNext_Click() {
  InstallState& state = install_.State;
  try {
    state.SqlUser = Trim(TxtUsrName.Text.Get());
    state.SqlPassword = Trim(TxtPsWord.Text.Get());
    state.ServerName = Trim(TxtServer.Text.Get());
    TheConnection().ConnectionString(install_.ServerConnectionString());
    TheConnection().Open();
    TheConnection().Close();
    Hide();
    pages_.Page<FrmLocation>().Show();
  } catch (...) {
    CaughtError();
    ForgetConnection();  // a connection that would not close refuses every further attempt
    LblMsg.Caption = "Authentication failed...";
    CmdNext.Enabled = false;
  }
}

void FrmAuthentication::CmdPrev_Click() {
  wentBack_ = true;
  Hide();
  pages_.Page<FrmMode>().Show();
}

}  // namespace talu
