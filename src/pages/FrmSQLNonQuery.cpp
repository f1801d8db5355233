#include "pages/FrmSQLNonQuery.h"

#include "pages/FrmApplication.h"
#include "pages/FrmLocation.h"
#include "startup/Wizard.h"

namespace talu {

FrmSQLNonQuery::FrmSQLNonQuery(Wizard& wizard)
    : WizardPage(wizard, "FrmSQLNonQuery", "Creating Database") {
  CmdPrev.Click = [this] { CmdPrev_Click(); };
}

FrmSQLNonQuery::~FrmSQLNonQuery() = default;

void FrmSQLNonQuery::Form_Load() {
  CmdNext.Enabled = false;
  SetUpFrame();
  ShpProgBar.Width = ProgressShare(6);
}

void FrmSQLNonQuery::Form_Activate() {
  WentBack = false;
  BuildSucceeded = false;
  BuildDatabase();
  if (!BuildSucceeded) return;
  Hide();
  wizard_.Page<FrmApplication>().Show();
}

void FrmSQLNonQuery::CmdPrev_Click() {
  WentBack = true;
  Hide();
  wizard_.Page<FrmLocation>().Show();
}

Connection& FrmSQLNonQuery::TheConnection() {
  if (!connection_) connection_ = wizard_.Machine.DataAccess.CreateConnection();
  return *connection_;
}

Command& FrmSQLNonQuery::TheCommand() {
  if (!command_) command_ = wizard_.Machine.DataAccess.CreateCommand();
  return *command_;
}

}  // namespace talu
