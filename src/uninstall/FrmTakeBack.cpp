#include "uninstall/FrmTakeBack.h"

#include <algorithm>
#include <initializer_list>
#include <optional>
#include <utility>

#include "runtime/TextFunctions.h"
#include "takeback/Commands.h"
#include "uninstall/PlanText.h"

namespace talu {
namespace {

using Controls = std::initializer_list<VisibleControl*>;

void SetVisible(Controls controls, bool visible) {
  for (VisibleControl* control : controls) control->Visible = visible;
}

}  // namespace

FrmTakeBack::FrmTakeBack(const Machine& machine, Removal& removal, const std::string& program,
                         std::function<void(int)> exitCode)
    : Form(machine.Windows, "FrmTakeBack", layout::kPageWidth, layout::kPageHeight),
      machine_(machine),
      removal_(removal),
      program_(program),
      exitCode_(std::move(exitCode)),
      takeBack_(std::make_unique<TakeBack>(machine, removal, program)) {
  exitCode_(kSomethingLeft);
  LblPlan.Scrolling();
  LblResult.Scrolling();
  LblPack.WithMnemonic();
  LblUsrName.WithMnemonic();
  LblPsWord.WithMnemonic();
  LblServer.WithMnemonic();
  TxtPsWord.HidingText();
  CmdPack.LabelledBy("LblPack");
  CmdNext.AsDefault();
  CmdNext.Click = [this] { CmdNext_Click(); };
  CmdCancel.Click = [this] { windows_.EndProgram(); };
  CmdPack.Click = [this] { CmdPack_Click(); };
  ChkDatabases.Click = [this] { ChkDatabases_Click(); };
}

void FrmTakeBack::Form_Load() {
  const std::string product = Mid(machine_.AppPath, InStrRev(machine_.AppPath, "\\") + 1);
  Caption(product);
  LblTitleMsg.Caption = "Remove " + product;
  const std::string picture = machine_.AppPath + "\\Skin\\WindowBack.jpg";
  if (machine_.Files.FileExists(picture)) ImgBack.Picture = windows_.LoadPicture(picture);
  TxtUsrName.Text = takeBack_->Login();
  TxtServer.Text = takeBack_->Server();
  SetVisible({&ChkDatabases, &LblDatabases}, takeBack_->HasDatabases());
  ShowLogin(false);
  SetVisible({&LblResult, &ShpProgBase, &ShpProgBar}, false);
  for (CommandButton* button : {&CmdPack, &CmdNext}) button->Enabled = false;
}

// The window is there while thousands of files are looked at.
void FrmTakeBack::Form_Activate() {
  // Where the pack was when it was installed from, it may still be.
  const std::string pack = takeBack_->PackFolder();
  if (!pack.empty() && machine_.Files.FileExists(pack + "\\AppCfg.txt") && TakePack(pack)) {
    TxtPack.Text = pack;
  }
  ShowPlan();
}

void FrmTakeBack::Form_QueryUnload() {
  windows_.EndProgram();
}

void FrmTakeBack::ShowLogin(bool visible) {
  SetVisible({&LblUsrName, &TxtUsrName, &LblPsWord, &TxtPsWord, &LblServer, &TxtServer}, visible);
}

bool FrmTakeBack::TakePack(const std::string& folder) {
  try {
    takeBack_ = std::make_unique<TakeBack>(machine_, removal_, program_, folder);
    pack_ = folder;
    return true;
  } catch (...) {
    windows_.MessageBox(CaughtError().Description, "");
    return false;
  }
}

TakeBackOptions FrmTakeBack::Options() const {
  TakeBackOptions options;
  options.DropDatabases = ChkDatabases.Value;
  options.Server = Trim(TxtServer.Text.Get());
  options.Login = Trim(TxtUsrName.Text.Get());
  options.Password = TxtPsWord.Text.Get();
  return options;
}

void FrmTakeBack::ShowPlan() {
  looking_ = true;
  // Clicks would be refused, without a word.
  for (CommandButton* button : {&CmdPack, &CmdNext}) button->Enabled = false;
  MousePointer(11);
  LblMsg.Caption = "Looking at what is there, please wait ...";
  TakeBackOptions options;
  std::vector<Verdict> verdicts;
  do {
    options = Options();
    ShowLogin(options.DropDatabases);
    verdicts = takeBack_->Plan(options, [this] { windows_.DoEvents(); });
  } while (options.DropDatabases != ChkDatabases.Value);  // ticked meanwhile
  LblPlan.Caption = PlanText(takeBack_->Steps(), verdicts, "Will be removed:");
  LblMsg.Caption = "";
  MousePointer(0);
  for (CommandButton* button : {&CmdPack, &CmdNext}) button->Enabled = true;
  looking_ = false;
}

void FrmTakeBack::ChkDatabases_Click() {
  if (!looking_) ShowPlan();
}

void FrmTakeBack::CmdPack_Click() {
  const std::optional<std::string> folder = windows_.BrowseForFolder(*this, "Select the pack");
  if (!folder) return;
  TxtPack.Text = *folder;
  if (TakePack(*folder)) ShowPlan();
}

void FrmTakeBack::CmdNext_Click() {
  if (done_) windows_.EndProgram();
  const std::string pack = Trim(TxtPack.Text.Get());
  if (pack != pack_) {
    if (!TakePack(pack)) return;
    ShowPlan();
    LblMsg.Caption = "The pack is another one: look at the list, then click Remove.";
    return;
  }
  for (CommandButton* button : {&CmdNext, &CmdCancel, &CmdPack}) button->Enabled = false;
  for (TextBox* box : {&TxtPack, &TxtUsrName, &TxtPsWord, &TxtServer}) box->Enabled = false;
  ChkDatabases.Enabled = false;
  SetVisible({&ShpProgBase, &ShpProgBar}, true);
  LblNotRes.Caption = "Note: the window may appear as not responding for a while, please wait ...";
  Run();
}

void FrmTakeBack::Run() {
  const bool all = takeBack_->Run(Options(), *this);
  exitCode_(all ? kTakenBack : kSomethingLeft);
  ShpProgBar.Width = kProgressWidth;
  LblPlan.Caption = "";
  SetVisible({&LblPlan, &LblPack, &TxtPack, &CmdPack, &ChkDatabases, &LblDatabases}, false);
  ShowLogin(false);
  LblResult.Caption = PlanText(takeBack_->Steps(), verdicts_, "Removed:");
  LblResult.Visible = true;
  LblNotRes.Caption = "";
  LblMsg.Caption = all ? "All that was installed is removed. Click Finish to exit."
                       : "Something is left. When its cause is mended, start this program again.";
  done_ = true;
  CmdCancel.Visible = false;
  CmdNext.Caption = "&Finish";
  CmdNext.Enabled = true;
}

void FrmTakeBack::Begin(const Step& step, std::size_t index, std::size_t count) {
  LblMsg.Caption = "Removing - " + step.Name;
  ShpProgBar.Width = static_cast<int>(kProgressWidth * index / std::max<std::size_t>(count, 1));
  windows_.DoEvents();
}

void FrmTakeBack::End(const Step&, const Verdict& verdict) {
  verdicts_.push_back(verdict);
}

}  // namespace talu
