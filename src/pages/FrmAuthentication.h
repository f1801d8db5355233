#pragma once

#include "pages/WizardPage.h"
#include "startup/AdoObjects.h"

namespace talu {

/// SQL Server login name, password and server, verified by opening a connection.
class FrmAuthentication : public WizardPage, private AdoObjects {
 public:
  explicit FrmAuthentication(Pages& pages);

  Label Label4{*this,
               "Label4",
               "You have to give the sql user authentication credentials (Valid SQL User Name and "
               "Password) and Server Name here.",
               TextStyle::Body,
               {layout::kLeft, 1200, layout::kWidth, 2 * layout::kLine}};
  Label Label2{*this, "Label2", "&User Name", TextStyle::Label, NameOf(1920)};
  TextBox TxtUsrName{*this, "TxtUsrName", "Label2", layout::Box(2640, 1920)};
  Label Label3{*this, "Label3", "&Password", TextStyle::Label, NameOf(2400)};
  TextBox TxtPsWord{*this, "TxtPsWord", "Label3", layout::Box(2640, 2400)};
  Label Label5{*this, "Label5", "Server Name", TextStyle::Label, NameOf(2880)};
  TextBox TxtServer{*this, "TxtServer", "Label5", layout::Box(2640, 2880)};

  Label LblMsg{*this, "LblMsg", "", TextStyle::Status, layout::kStatus};
  Shape ShpProgBase{*this, "ShpProgBase", Shape::Track, layout::kTrack};
  Shape ShpProgBar{*this, "ShpProgBar", Shape::Bar, layout::Bar(ProgressShare(3))};
  Label LblNotRes{*this, "LblNotRes", kNotResponding, TextStyle::Note, layout::kNote};
  CommandButton CmdPrev{*this, "CmdPrev", "&Back", layout::kBack};
  CommandButton CmdNext{*this, "CmdNext", "&Next", layout::kNext};

 protected:
  void Form_Load() override;

 private:
  static constexpr Place NameOf(int top) { return {layout::kLeft, top + 75, 1680, layout::kLine}; }

  void AnyBox_Change();
  void CmdNext_Click();
  void CmdPrev_Click();

  bool wentBack_ = false;
};

}  // namespace talu
