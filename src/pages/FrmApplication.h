#pragma once

#include <string>

#include "deploy/Deployment.h"
#include "pages/WizardPage.h"

namespace talu {

/// The last page: installs the application as soon as it is shown.
class FrmApplication : public WizardPage {
 public:
  explicit FrmApplication(Pages& pages);

  bool CreateDSN(const std::string& driver, const std::string& attributes) {
    return deployment_.CreateDSN(driver, attributes);
  }
  void Shotcuts() { deployment_.Shotcuts(); }
  void RunAddOns() { deployment_.RunAddOns(); }
  void WriteSettings() { deployment_.WriteSettings(); }

  Label Lblmsg{*this, "Lblmsg", " This will install Application.....", TextStyle::Status,
               layout::kStatus};
  Shape ShpProgBase{*this, "ShpProgBase", Shape::Track, layout::kTrack};
  Shape ShpProgBar{*this, "ShpProgBar", Shape::Bar, layout::Bar(0)};
  Label LblNotRes{*this, "LblNotRes", kNotResponding, TextStyle::Note, layout::kNote};
  Label LblFinalMsg{*this,
                    "LblFinalMsg",
                    "",
                    TextStyle::Body,
                    {layout::kLeft - kScrollMargin, 960, layout::kWidth + kScrollMargin, 3120}};
  CommandButton CmdNext{*this, "CmdNext", "&Finish", layout::kNext};

  /// A copy made by another page is shown here too.
  const WorkView View{Lblmsg, ShpProgBar, LblNotRes, CmdNext};

 protected:
  void Form_Load() override;
  void Form_Activate() override;

 private:
  void CmdNext_Click();

  Deployment deployment_{install_, View, LblFinalMsg};
};

}  // namespace talu
