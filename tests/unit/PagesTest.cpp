#include <algorithm>

#include "PagePlay.h"
#include "pages/FrmAuthentication.h"
#include "pages/FrmLocation.h"

namespace talu {
namespace {

class PagesTest : public PagePlay {
 protected:
  PagesTest() { Configure({"FreshDBSript=f.sql", "DemoDBSript=", "UpgradeDBSript=u.sql"}); }

  std::string backup = "C:\\Progs\\TA-LU\\App BackUp\\AppFolderBkp_7_3_2012_9_";
};

TEST_F(PagesTest, TypesWithoutScriptsAreGreyAndTheFirstOtherIsSelected) {
  Start();
  Play(
      "expect OptDemo enabled false; expect LblDemo enabled false"
      "; expect LblDemoDescription enabled false; expect OptFresh value true"
      "; expect LblNotRes text ");
  // A selected option that loses its scripts stays selected and Next goes on.
  Configure({});
  Play("click CmdNext; click CmdPrev; expect OptFresh enabled false; expect OptFresh value true");
}

TEST_F(PagesTest, WithoutAnyScriptsNothingIsSelectedAndNextKeepsTheType) {
  Configure({});
  Start();
  Play(
      "expect OptFresh value false; expect OptDemo value false; expect OptUpgrade value false"
      "; click CmdNext; wait FrmMode");
  EXPECT_EQ(wizard.State.SetupType, 0);
}

TEST_F(PagesTest, OldFolderControlsFollowTheirClicks) {
  Configure({"FreshDBSript=f", "DemoDBSript=d", "UpgradeDBSript=u"});
  Start();
  Play(
      "expect ChkOldLocation visible false; click OptUpgrade; expect ChkOldLocation visible true"
      "; expect LblOldLocation visible true; expect TxtInstaPath visible false"
      "; click ChkOldLocation; expect TxtInstaPath visible true; expect CmdLocation visible true");
  EXPECT_TRUE(wizard.State.UseOldLocation);
  Play("browse C:\\Old; click CmdLocation; click CmdLocation");  // then cancelled
  windows.BrowseError = RuntimeError(error::kPathNotFound);
  Play("click CmdLocation; message ; expect TxtInstaPath text C:\\Old");  // fails, silently
  EXPECT_EQ(wizard.State.OldInstallPath, "C:\\Old");
  Play(
      "click OptDemo; expect ChkOldLocation visible true; expect TxtInstaPath visible true"
      "; click OptFresh; expect ChkOldLocation visible false; expect TxtInstaPath visible false");
  EXPECT_TRUE(wizard.State.UseOldLocation);
  Play(
      "click OptUpgrade; expect TxtInstaPath visible true; click ChkOldLocation"
      "; expect TxtInstaPath visible false");
  EXPECT_FALSE(wizard.State.UseOldLocation);
}

TEST_F(PagesTest, BackAndNextFollowTheMode) {
  Start();
  Play("click CmdNext; expect OptServer value true; click CmdNext; wait FrmAuthentication");
  EXPECT_EQ(Width(), 220);
  EXPECT_NE(Shown("LblNotRes"), "");
  Play(
      "type TxtUsrName  sa ; type TxtPsWord secret; expect CmdNext enabled false"
      "; type TxtServer SRV1; click CmdNext; wait FrmLocation"
      "; expect LblTitleMsg text Select Location ; expect TxtServer visible false");
  EXPECT_EQ(Width(), 440);
  Play(
      "click CmdPrev; wait FrmAuthentication; expect TxtUsrName text  sa ; click CmdPrev"
      "; wait FrmMode; click OptClient; expect OptServer value false; click CmdNext"
      "; wait FrmLocation; click CmdPrev; wait FrmMode; expect OptClient value true"
      "; click OptServer; click CmdPrev; wait FrmType");
  EXPECT_EQ(wizard.State.SqlUser, "sa");
  EXPECT_EQ(wizard.State.Mode, 1) << "only Next stores the choice";
  windows.Close();
  EXPECT_TRUE(windows.Ended());
}

TEST_F(PagesTest, AuthenticationStoresFirstAndStaysUntilTheServerAgrees) {
  machine.Server.Password = "right";
  Start();
  // A server of blanks enables Next, and fails.
  Play(
      "click CmdNext; click CmdNext; expect CmdNext enabled false; type TxtUsrName sa"
      "; type TxtPsWord wrong; type TxtServer   ; click CmdNext");
  EXPECT_EQ(wizard.State.ServerName, "");
  Play(
      "type TxtServer SRV1; click CmdNext; expect LblMsg text Authentication failed..."
      "; expect CmdNext enabled false");
  EXPECT_EQ(wizard.State.SqlPassword, "wrong");
  Play(
      "type TxtPsWord right; type TxtUsrName  ; expect CmdNext enabled false"
      "; type TxtUsrName sa; click CmdNext; wait FrmLocation; message ");
  EXPECT_EQ(machine.Journal.Texts("connect", "text").back(),
            "driver={SQL Server};server=SRV1;uid=sa;pwd=right;database=Master");
}

TEST_F(PagesTest, AtItsLoadAuthenticationLooksAtTheLoginOnly) {
  for (const char* password : {"", "secret"}) {
    Wizard other(machine.Parts);
    other.State.SqlUser = "sa";
    other.State.SqlPassword = password;
    windows.Run([&] { other.Page<FrmAuthentication>().Show(); });
    EXPECT_EQ(windows.Shown("CmdNext")->Enabled, *password != '\0');
  }
}

TEST_F(PagesTest, AChosenRootGetsProductAndApplicationFolder) {
  const std::tuple<const char*, const char*, const char*> cases[] = {
      // chosen, kept, in the box
      {"C:\\Progs", "C:\\Progs\\TA-LU", "C:\\Progs\\TA-LU\\App"},
      {"C:\\", "C:\\TA-LU", "C:\\TA-LU\\App"},
      {"C:\\TA-LU\\Old", "C:\\TA-LU\\Old", "C:\\TA-LU\\Old\\App"},
      {"C:\\TA-LU\\App\\", "C:\\TA-LU\\App\\", "C:\\TA-LU\\App\\"},
      {"C:\\Apple\\TA-LU", "C:\\Apple\\TA-LU", "C:\\Apple\\TA-LU"},
  };
  GoToLocation("OptFresh", "OptClient", "C:\\x");
  for (const auto& [root, installPath, box] : cases) {
    Play(std::string("browse ") + root + "; click CmdLocation; expect TxtInstaPath text " + box);
    EXPECT_EQ(wizard.State.InstallPath, installPath);
  }
  Play("click CmdLocation");  // cancelled
  EXPECT_EQ(wizard.State.InstallPath, "C:\\Apple\\TA-LU");
  windows.Focus("TxtServer");
  EXPECT_EQ(windows.Shown("TxtServer")->SelLength, 4);
  Play(
      "hover TxtInstaPath; expect TxtInstaPath tip C:\\Apple\\TA-LU"
      "; type TxtInstaPath ; expect CmdNext enabled true; type TxtInstaPath C:\\Typed");
  windows.BrowseError = RuntimeError(error::kPathNotFound, "Path not found", "Shell");
  Play("click CmdLocation; message 76/Path not found/Shell; expect TxtInstaPath text ");
  EXPECT_EQ(wizard.State.InstallPath, "");
  // A name that is not read costs a box; the other is read, and the folder chosen.
  wizard.State.AppFolderName = "";
  machine.Journal.FailRequest(machine.Journal.Requests() + 1, RuntimeError(error::kDeviceIO));
  Play(
      "browse C:\\Progs; click CmdLocation; message 57/Device I/O error/"
      "; expect TxtInstaPath text C:\\Progs\\TA-LU\\App");
}

TEST_F(PagesTest, UpgradeIntoTheOldFolderFillsTheLocation) {
  Start();
  Play(
      "click OptUpgrade; click ChkOldLocation; browse C:\\Old; click CmdLocation; click CmdNext"
      "; click OptClient; click CmdNext; expect TxtInstaPath text C:\\Old\\TA-LU\\App"
      "; expect LblTitleMsg text Select Location and Server; expect TxtServer visible true");
  EXPECT_EQ(wizard.State.InstallPath, "C:\\Old\\TA-LU");

  // What is backed up is the old folder, wherever the new one is.
  machine.Disk.WriteFile("C:\\Old\\old.txt", "old");
  machine.Disk.WriteFile("C:\\New\\App\\new.txt", "new");
  Play("type TxtInstaPath C:\\New\\App; type TxtServer SRV1; click CmdNext");
  backup = "C:\\New\\App BackUp\\AppFolderBkp_7_3_2012_9_5";
  EXPECT_EQ(Get(backup + "\\old.txt"), "old");
  EXPECT_EQ(Get(backup + "\\new.txt"), "(none)");
}

TEST_F(PagesTest, NextMakesFoldersLogAndRecord) {
  Configure({"FreshDBSript=f.sql"});
  machine.Disk.MakeFolders("C:\\Progs");
  GoToLocation("OptFresh", "OptClient", "C:\\Progs");
  const auto before = Story().size();
  Play("click CmdNext; wait FrmApplication");
  EXPECT_EQ(Story().at(before), "CmdNext false") << "while it works";
  const std::string log = Get(app + "\\Ta-luErrLog.txt");
  EXPECT_TRUE(log.starts_with("//|Installation Started...|Application Folder created-" + app +
                              "||//|AppFolder created :" + app + "||//|DBFolder created :" + app +
                              "\\Data||"))
      << log;
  EXPECT_EQ(Get(app + "\\Uninstall.dat"),
            "AppFolder:" + app + "||DBFolder:" + app + "\\Data||Server:SRV1||");
  EXPECT_TRUE(machine.Disk.FolderExists(app + "\\Data"));
}

TEST_F(PagesTest, NextOverAnInstallationBacksItUpAndGoesOnWithItsRecord) {
  machine.Disk.WriteFile(app + "\\Sub\\old.txt", "old");
  machine.Disk.WriteFile(app + "\\Ta-luErrLog.txt", "old log");
  machine.Disk.WriteFile(app + "\\Uninstall.dat", "old record\r\n");
  machine.Disk.Find(app + "\\Ta-luErrLog.txt")->ReadOnly = true;
  GoToLocation("OptFresh", "OptServer", "C:\\Progs");
  wizard.State.ServerName = "";  // Next does all its work and stays
  Play(
      "click CmdNext; wait FrmLocation; expect CmdNext enabled true"
      "; expect LblMsg text Taking Backup of installation folders...");
  EXPECT_EQ(Get(backup + "5\\Sub\\old.txt"), "old");
  EXPECT_EQ(Get(backup + "5\\Ta-luErrLog.txt"), "(none)") << "the reset comes first";
  std::string pointers;
  for (const JournalEvent& event : machine.Journal.Events()) {
    if (event.Text("property") == "MousePointer") pointers += event.Text("value") + ",";
  }
  EXPECT_EQ(pointers, "11,0,");
  EXPECT_FALSE(Get(app + "\\Ta-luErrLog.txt").starts_with("old"));
  EXPECT_TRUE(Get(app + "\\Uninstall.dat").starts_with("old record|AppFolder:"));
  Play("click CmdNext");
  EXPECT_EQ(std::ranges::count(machine.Journal.Texts("mkdir", "path"), backup + "5"), 1)
      << "one a minute";
  machine.Clock.Time.Minute = 6;
  Play("click CmdNext");
  EXPECT_EQ(Get(backup + "6\\Sub\\old.txt"), "old");
}

TEST_F(PagesTest, ImpatientClicksDuringTheBackupAreRefused) {
  machine.Disk.WriteFile(app + "\\old.txt", "old");
  GoToLocation("OptFresh", "OptClient", "C:\\Progs");
  windows.DuringEvents = [this] {
    windows.Type("TxtServer", "SRV2");  // brings Next back
    windows.Click("CmdNext");
    windows.Click("CmdPrev");
  };
  Play("click CmdNext; wait FrmApplication");
  EXPECT_EQ(machine.Journal.Texts("show", "form").back(), "FrmApplication");
  EXPECT_EQ(std::ranges::count(LogEntries(), "Installation finished."), 1);
}

TEST_F(PagesTest, AMinuteThatPassesBeforeTheCopyLeavesTheBackupEmpty) {
  machine.Disk.WriteFile(app + "\\old.txt", "old");
  GoToLocation("OptFresh", "OptClient", "C:\\Progs");
  DateTime later = machine.Clock.Time;
  later.Minute = 6;
  machine.Clock.Coming = {machine.Clock.Time, machine.Clock.Time, later};
  int writers = -1;
  machine.Journal.OnRequest = [&](int, const std::string& kind) {
    const auto* log = machine.Disk.Find(app + "\\Ta-luErrLog.txt");
    if (kind == "mkdir" && log != nullptr) writers = log->Writers;
  };
  Play("click CmdNext");
  EXPECT_TRUE(machine.Disk.FolderExists(backup + "5"));
  EXPECT_FALSE(machine.Disk.FileExists(backup + "5\\old.txt"));
  EXPECT_FALSE(machine.Disk.FolderExists(backup + "6"));
  EXPECT_EQ(writers, 0) << "the copy was to have the new log";
}

TEST_F(PagesTest, FailuresOfNextAreShownAndLeaveItDisabled) {
  const std::string inUse = "Location in use,Please select Another Location...";
  const std::string record = "C:\\Other\\TA-LU\\App\\Uninstall.dat";
  machine.Disk.WriteFile(record, "");
  machine.Disk.MakeFolders("C:\\Denied").Denied = true;
  GoToLocation("OptFresh", "OptClient", "C:\\Nowhere");
  Play("click CmdNext; message Path not found; expect CmdNext enabled false");
  // A folder whose name the application's folder has already: the box reads the same each time.
  const std::string same = "expect TxtInstaPath text C:\\Apple\\TA-LU; expect CmdNext enabled ";
  Play("browse C:\\Apple; click CmdLocation; " + same + "true; click CmdNext; " + same +
       "false; browse C:\\Apple; click CmdLocation; " + same + "true");
  Play(
      "browse C:\\Denied; click CmdLocation; expect CmdNext enabled true; click CmdNext; "
      "message " +
      inUse + "; expect LblMsg text " + inUse + "; expect CmdNext enabled false");
  machine.Disk.Find(record)->Writers = 1;
  Play("browse C:\\Other; click CmdLocation; click CmdNext; message " + inUse);
  machine.Disk.Find(record)->Writers = 0;
  machine.Disk.Find(record)->ReadOnly = true;
  Play("type TxtServer SRV2; click CmdNext; message Path/File access error; wait FrmLocation");
}

TEST_F(PagesTest, WithoutAnApplicationFolderNameOnlyTheRootIsMade) {
  Put("AppCfg.txt", Block("AppTitle", "T") + Block("DBFolder", "Data"));
  machine.Disk.MakeFolders("C:\\Progs");
  GoToLocation("OptFresh", "OptClient", "C:\\Progs");
  Play("click CmdNext; message Bad file name or number");  // the log was never started
  EXPECT_EQ(machine.Journal.Texts("mkdir", "path"), Texts{"C:\\Progs\\TA-LU"});
  EXPECT_EQ(wizard.State.AppFolderPath, "");
}

TEST_F(PagesTest, AddRegistryLogsAndSaves) {
  machine.Disk.MakeFolders(app);
  wizard.State.AppFolderPath = app;
  wizard.State.LogFileNumber = 1;
  wizard.Page<FrmLocation>().AddRegistry();
  EXPECT_EQ(machine.Journal.Texts("setting", "value"), Texts{app});
  machine.Journal.FailRequest(machine.Journal.Requests() + 3, RuntimeError(error::kPathNotFound));
  wizard.Page<FrmLocation>().AddRegistry();
  EXPECT_EQ(LogEntries().back(), "Failed to add Registry entry: TA-LU , Application , , " + app);
  wizard.State.OldInstallationFound = true;
  const auto entries = LogEntries().size();
  wizard.Page<FrmLocation>().AddRegistry();
  EXPECT_EQ(LogEntries().size(), entries);
  wizard.WriteErrLog("");
  EXPECT_TRUE(Get(app + "\\Ta-luErrLog.txt").ends_with(app + "||//|||"));
}

}  // namespace
}  // namespace talu
