#include "PagePlay.h"
#include "takeback/Commands.h"
#include "uninstall/FrmTakeBack.h"

namespace talu {
namespace {

/// A server installation, and the page of Uninstall.exe that has not been shown.
struct TakeBackPage : PagePlay {
  TakeBackPage() {
    Configure({"Shotcut=\\Desk.exe,Desktop,Desk", "FreshDBSript=a.sql", "DBSript=Sales"});
    Put("SQLScript\\Fresh\\a.sql",
        talu::Lines("--taluGO|CREATE DATABASE Sales ON (FILENAME='C:\\Old\\Sales.mdf')|GO"));
    Put("Application\\Desk.exe", "desk");
    Put("Application\\Uninstall.exe", "program");
    machine.Disk.MakeFolders("C:\\Progs");
    Install("OptServer");
    wizard.TextFiles.Close(wizard.State.LogFileNumber);
    wizard.TextFiles.Close(wizard.State.UninstallFileNumber);
    parts.AppPath = app;
    page = std::make_unique<FrmTakeBack>(parts, machine.Removal, "Uninstall.exe",
                                         [this](int code) { exitCode = code; });
  }
  void TestBody() override {}

  /// How many the record has.
  std::ptrdiff_t Lines() { return std::ranges::count(Get(app + "\\Uninstall.dat"), '|') / 2; }

  Machine parts = machine.Parts;
  int exitCode = -1;
  std::unique_ptr<FrmTakeBack> page;
};

const char* const kChoices =
    "wait FrmTakeBack; expect TxtPack text D:\\Pack; expect CmdPack enabled true"
    "; expect TxtServer visible false; expect LblMsg text ; expect CmdNext enabled true";

struct Case {
  const char* What;
  std::function<void(TakeBackPage&)> Prepare;
  const char* Steps;
  int ExitCode;
  /// Of the record, when the program has ended.
  std::ptrdiff_t Lines;
};

TEST(TakeBackPageTest, EndsAsTheCommandDoesAndLosesNothing) {
  const auto nothing = [](TakeBackPage&) {};
  const std::vector<Case> cases = {
      {"all goes, the databases too", nothing,
       "click ChkDatabases; expect TxtServer visible true; expect TxtServer text SRV1"
       "; expect TxtUsrName text sa; expect TxtPsWord text ; click CmdNext"
       "; expect LblMsg text All that was installed is removed. Click Finish to exit."
       "; expect LblPlan visible false; expect TxtServer visible false"
       "; expect CmdCancel visible false; expect CmdNext text &Finish; click CmdNext; wait ",
       kTakenBack, 0},
      {"cancelled", nothing, "click CmdCancel; wait ", kSomethingLeft, 8},
      {"another pack is looked at before anything goes", nothing,
       "type TxtPack ; click CmdNext; expect CmdNext text &Remove"
       "; expect LblMsg text The pack is another one: look at the list, then click Remove.",
       kSomethingLeft, 8},
      {"a file in use",
       [](TakeBackPage& run) { run.machine.Disk.Find(run.app + "\\Desk.exe")->Denied = true; },
       "click CmdNext; expect LblMsg text Something is left. When its cause is mended, start this "
       "program again.; expect CmdNext text &Finish; click CmdNext; wait ",
       kSomethingLeft, 6},
      {"closed in the middle of it",
       [](TakeBackPage& run) {
         run.windows.DuringEvents = [&run] {
           if (run.windows.Shown("ShpProgBar")->Width > kProgressWidth / 4)
             run.page->OperatorClosed();
         };
       },
       "click CmdNext; wait ", kSomethingLeft, 8},
      {"an error box",
       [](TakeBackPage& run) {
         run.windows.DuringEvents = [&run] {
           if (run.windows.Shown("ShpProgBar")->Visible) throw RuntimeError(error::kOutOfMemory);
         };
       },
       "click CmdNext; wait ", kSomethingLeft, 8},
  };
  for (const Case& each : cases) {
    SCOPED_TRACE(each.What);
    TakeBackPage run;
    EXPECT_EQ(run.Lines(), 8);
    EXPECT_EQ(run.exitCode, kSomethingLeft);
    run.windows.Run([&run] { run.page->Show(); });
    run.Play(kChoices);
    each.Prepare(run);
    run.Play(each.Steps);
    EXPECT_EQ(run.exitCode, each.ExitCode);
    EXPECT_EQ(run.Lines(), each.Lines);
  }
}

TEST(TakeBackPageTest, IsThereWhileItLooksAndTakesATick) {
  TakeBackPage run;
  int looks = 0;
  run.windows.DuringEvents = [&] {
    if (++looks != 2) return;
    run.Play(
        "wait FrmTakeBack; expect LblMsg text Looking at what is there, please wait ..."
        "; expect CmdNext enabled false; expect CmdPack enabled false; expect CmdCancel enabled "
        "true"
        "; click ChkDatabases");
  };
  run.windows.Run([&run] { run.page->Show(); });
  run.Play("expect CmdNext enabled true; expect LblMsg text ; expect TxtServer visible true");
  EXPECT_TRUE(Contains(run.Shown("LblPlan"), "\rdatabase Sales: After a backup."))
      << run.Shown("LblPlan");
}

}  // namespace
}  // namespace talu
