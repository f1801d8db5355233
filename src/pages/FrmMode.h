#pragma once

#include "pages/WizardPage.h"

namespace talu {

/// The second page: server installation, which builds the databases, or client installation.
class FrmMode : public WizardPage {
 public:
  explicit FrmMode(Pages& pages);

  OptionButton OptServer{*this, "OptServer", "Label6", layout::Mark(layout::kLeft, 1200)};
  Label Label6{*this, "Label6", "Server Installation", TextStyle::Label, layout::Text(1200)};
  Label Label3{
      *this, "Label3",
      "Select Server Installation if the installation is doing on the server machine. This mode "
      "will build database of the product with sql rights in addition to the necessary files "
      "(Applicaiton files, DSN, Registration) to load the application.",
      TextStyle::Body, layout::Text(1440, 4)};
  OptionButton OptClient{*this, "OptClient", "Label5", layout::Mark(layout::kLeft, 2520)};
  Label Label5{*this, "Label5", "Client Installation", TextStyle::Label, layout::Text(2520)};
  Label Label2{
      *this, "Label2",
      "Select Client installation if the installation is doing on Client machine. It will install "
      "the necessary files[Application files,DSN,Registration) to load the Application.",
      TextStyle::Body, layout::Text(2760, 3)};

  Label LblMsg{*this, "LblMsg", "", TextStyle::Status, layout::kStatus};
  Shape ShpProgBase{*this, "ShpProgBase", Shape::Track, layout::kTrack};
  Shape ShpProgBar{*this, "ShpProgBar", Shape::Bar, layout::Bar(ProgressShare(2))};
  Label LblNotRes{*this, "LblNotRes", kNotResponding, TextStyle::Note, layout::kNote};
  CommandButton CmdPrev{*this, "CmdPrev", "&Back", layout::kBack};
  CommandButton CmdNext{*this, "CmdNext", "&Next", layout::kNext};

 protected:
  void Form_Load() override;

 private:
  void CmdNext_Click();
  void CmdPrev_Click();
};

}  // namespace talu
