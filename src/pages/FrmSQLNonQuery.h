#pragma once

#include "database/DatabaseBuild.h"
#include "pages/WizardPage.h"

namespace talu {

/// Builds the databases from the pack's scripts as soon as it is shown.
class FrmSQLNonQuery : public WizardPage {
 public:
  explicit FrmSQLNonQuery(Pages& pages);

  Label LblMsg{*this, "LblMsg", "This will generate database from SQL Script.....",
               TextStyle::Status, layout::kStatus};
  Shape ShpProgBase{*this, "ShpProgBase", Shape::Track, layout::kTrack};
  Shape ShpProgBar{*this, "ShpProgBar", Shape::Bar, layout::Bar(ProgressShare(6))};
  Label LblNotRes{*this, "LblNotRes", kNotResponding, TextStyle::Note, layout::kNote};
  CommandButton CmdPrev{*this, "CmdPrev", "&Back", layout::kBack};
  CommandButton CmdNext{*this, "CmdNext", "&Next", layout::kNext};

  DatabaseBuild Build{install_, {LblMsg, ShpProgBar, LblNotRes, CmdNext}, CmdPrev};

 protected:
  void Form_Load() override;
  void Form_Activate() override;

 private:
  void CmdPrev_Click();
  void BuildDatabase() { Build.BuildDatabase(); }

  bool WentBack = false;
};

}  // namespace talu
