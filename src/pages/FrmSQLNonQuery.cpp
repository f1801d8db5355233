#include "pages/FrmSQLNonQuery.h"

#include "pages/FrmApplication.h"
#include "pages/FrmLocation.h"
#include "pages/Pages.h"
#include "startup/InstallContext.h"

namespace talu {

FrmSQLNonQuery::FrmSQLNonQuery(Pages& pages)
    : WizardPage(pages, "FrmSQLNonQuery", "Creating Database") {
  CmdPrev.Click = [this] { CmdPrev_Click(); };
}

void FrmSQLNonQuery::Form_Load() {
  CmdNext.Enabled = false;
  SetUpFrame();
  ShpProgBar.Width = ProgressShare(6);
}

void FrmSQLNonQuery::Form_Activate() {
  WentBack = false;
  Build.BuildSucceeded = false;
  BuildDatabase();
  if (!Build.BuildSucceeded) return;
  Hide();
  pages_.Page<FrmApplication>().Show();
}

void FrmSQLNonQuery::CmdPrev_Click() {
  WentBack = true;
  Hide();
  pages_.Page<FrmLocation>().Show();
}

}  // namespace talu
