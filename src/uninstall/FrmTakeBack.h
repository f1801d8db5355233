#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "forms/Form.h"
#include "forms/PageLayout.h"
#include "platform/Machine.h"
#include "platform/Removal.h"
#include "takeback/TakeBack.h"

namespace talu {

/// The one page of Uninstall.exe, in the manner of the wizard's: what will go and what stays, the
/// operator's choices, then the work and what came of it. Closing it ends the program at once; what
/// was not done by then is done when it is started again.
class FrmTakeBack : public Form, private TakeBackView {
 public:
  /// `machine` and `removal` outlive the page. `exitCode` is told what the program ends with, as of
  /// now and whenever that changes: as the command does, `kSomethingLeft` until all is done. Raises
  /// what reading the record raises.
  FrmTakeBack(const Machine& machine, Removal& removal, const std::string& program,
              std::function<void(int)> exitCode);

 private:
  // The page has only the rows that there is something to choose for; the list has what is left.
  static constexpr int kTop = 960;
  static constexpr int kGap = 120;
  static constexpr int kEnd = 4140;
  static constexpr int kLoginRow = kEnd - layout::kBoxHeight;
  static constexpr int kLoginNames = kLoginRow - layout::kLine;
  static constexpr int kDatabasesRow = kLoginNames - kGap - layout::kLine;
  static constexpr int kColumn = 2361;

  static constexpr Place Name(int column) {
    return {layout::kLeft + column * (kColumn + kGap), kLoginNames, kColumn, layout::kLine};
  }
  static constexpr Place Box(int column) {
    return {layout::kLeft + column * (kColumn + kGap), kLoginRow, kColumn, layout::kBoxHeight};
  }
  static constexpr Place List(int end) {
    return {layout::kLeft - kScrollMargin, kTop, layout::kWidth + kScrollMargin, end - kTop};
  }

  int PackRow() const {
    return (takeBack_->HasDatabases() ? kDatabasesRow - 2 * kGap : kEnd) - layout::kBoxHeight;
  }

  const Machine& machine_;
  Removal& removal_;
  const std::string program_;
  const std::function<void(int)> exitCode_;
  std::unique_ptr<TakeBack> takeBack_;
  /// The pack's folder that it was made with.
  std::string pack_;

 public:
  Image ImgBack{*this, "ImgBack", {0, 0, layout::kPageWidth, layout::kPageHeight}};
  Label LblTitleMsg{*this, "LblTitleMsg", "", TextStyle::Title, layout::kTitle};
  Label LblPlan{*this, "LblPlan", "", TextStyle::Body, List(PackRow() - kGap)};
  Label LblPack{*this,
                "LblPack",
                "&Pack",
                TextStyle::Label,
                {layout::kLeft, PackRow() + 75, 960, layout::kLine}};
  TextBox TxtPack{*this, "TxtPack", "LblPack", layout::FolderBox(layout::kLeft + 960, PackRow())};
  CommandButton CmdPack{*this, "CmdPack", "...", layout::FolderButton(PackRow())};
  CheckBox ChkDatabases{*this, "ChkDatabases", "", "LblDatabases",
                        layout::Mark(layout::kLeft, kDatabasesRow)};
  Label LblDatabases{*this,
                     "LblDatabases",
                     "Drop the databases and logins too, each database after a backup of it",
                     TextStyle::Body,
                     {layout::kIndent, kDatabasesRow, layout::kIndentWidth, layout::kLine}};
  Label LblUsrName{*this, "LblUsrName", "&User Name", TextStyle::Label, Name(0)};
  TextBox TxtUsrName{*this, "TxtUsrName", "LblUsrName", Box(0)};
  Label LblPsWord{*this, "LblPsWord", "Pass&word", TextStyle::Label, Name(1)};
  TextBox TxtPsWord{*this, "TxtPsWord", "LblPsWord", Box(1)};
  Label LblServer{*this, "LblServer", "&Server Name", TextStyle::Label, Name(2)};
  TextBox TxtServer{*this, "TxtServer", "LblServer", Box(2)};
  /// What came of it, in the place of all that was to be chosen.
  Label LblResult{*this, "LblResult", "", TextStyle::Body, List(kEnd)};

  Label LblMsg{*this, "LblMsg", "", TextStyle::Status, layout::kStatus};
  Shape ShpProgBase{*this, "ShpProgBase", Shape::Track, layout::kTrack};
  Shape ShpProgBar{*this, "ShpProgBar", Shape::Bar, layout::Bar(0)};
  Label LblNotRes{*this, "LblNotRes", "", TextStyle::Note, layout::kNote};
  CommandButton CmdCancel{*this, "CmdCancel", "&Cancel", layout::kBack};
  CommandButton CmdNext{*this, "CmdNext", "&Remove", layout::kNext};

 protected:
  void Form_Load() override;
  void Form_Activate() override;
  void Form_QueryUnload() override;

 private:
  void CmdNext_Click();
  void CmdPack_Click();
  void ChkDatabases_Click();

  /// Looks at everything anew, with the pack in this folder. Shows an error and returns false where
  /// that does not work.
  bool TakePack(const std::string& folder);
  TakeBackOptions Options() const;
  /// Lists what would become of each step with the choices of now.
  void ShowPlan();
  void ShowLogin(bool visible);
  void Run();

  void Begin(const Step& step, std::size_t index, std::size_t count) override;
  void End(const Step& step, const Verdict& verdict) override;

  /// Whether `ShowPlan` is at work.
  bool looking_ = false;
  /// Of the steps that are done, in their order.
  std::vector<Verdict> verdicts_;
  bool done_ = false;
};

}  // namespace talu
