#include <algorithm>

#include "Pack.h"
#include "pages/FrmAuthentication.h"
#include "pages/FrmLocation.h"

namespace talu {
namespace {

class PagesTest : public PackTest {
 protected:
  PagesTest() {
    Configure({Block("FreshDBSript", {"f.sql"}), Block("DemoDBSript", {}),
               Block("UpgradeDBSript", {"u.sql"})});
  }
  bool Visible(const std::string& control) { return windows.Shown(control)->Visible; }
  bool Enabled(const std::string& control) { return windows.Shown(control)->Enabled; }
};

TEST_F(PagesTest, TypesWithoutScriptsAreGreyAndTheFirstOtherIsSelected) {
  Start();
  for (const char* control : {"OptDemo", "LblDemo", "LblDemoDescription"}) {
    EXPECT_FALSE(Enabled(control)) << control;
  }
  EXPECT_TRUE(windows.Shown("OptFresh")->Value);
  EXPECT_EQ(Shown("LblNotRes"), "");
  // A selected option that loses its scripts stays selected and Next goes on.
  Configure({});
  windows.Click("CmdNext");
  windows.Click("CmdPrev");
  EXPECT_FALSE(Enabled("OptFresh"));
  EXPECT_TRUE(windows.Shown("OptFresh")->Value);
}

TEST_F(PagesTest, WithoutAnyScriptsNothingIsSelectedAndNextKeepsTheType) {
  Configure({});
  Start();
  for (const char* option : {"OptFresh", "OptDemo", "OptUpgrade"}) {
    EXPECT_FALSE(windows.Shown(option)->Value) << option;
  }
  EXPECT_TRUE(windows.Click("CmdNext"));
  EXPECT_EQ(windows.VisibleForm(), "FrmMode");
  EXPECT_EQ(wizard.State.SetupType, 0);
}

TEST_F(PagesTest, OldFolderControlsFollowTheirClicks) {
  Configure(
      {Block("FreshDBSript", {"f"}), Block("DemoDBSript", {"d"}), Block("UpgradeDBSript", {"u"})});
  Start();
  EXPECT_FALSE(Visible("ChkOldLocation"));
  windows.Click("OptUpgrade");
  EXPECT_TRUE(Visible("ChkOldLocation") && Visible("LblOldLocation"));
  EXPECT_FALSE(Visible("TxtInstaPath"));
  windows.Click("ChkOldLocation");
  EXPECT_TRUE(Visible("TxtInstaPath") && Visible("CmdLocation"));
  EXPECT_TRUE(wizard.State.UseOldLocation);
  windows.BrowseAnswers = {"C:\\Old"};
  windows.Click("CmdLocation");
  windows.Click("CmdLocation");  // cancelled
  windows.BrowseError = RuntimeError(error::kPathNotFound);
  windows.Click("CmdLocation");  // fails, silently
  EXPECT_TRUE(windows.Messages().empty());
  EXPECT_EQ(wizard.State.OldInstallPath, "C:\\Old");
  EXPECT_EQ(Shown("TxtInstaPath"), "C:\\Old");
  windows.Click("OptDemo");
  EXPECT_TRUE(Visible("ChkOldLocation") && Visible("TxtInstaPath"));
  windows.Click("OptFresh");
  EXPECT_FALSE(Visible("ChkOldLocation") || Visible("TxtInstaPath"));
  EXPECT_TRUE(wizard.State.UseOldLocation);
  windows.Click("OptUpgrade");
  EXPECT_TRUE(Visible("TxtInstaPath"));
  windows.Click("ChkOldLocation");
  EXPECT_FALSE(wizard.State.UseOldLocation || Visible("TxtInstaPath"));
}

TEST_F(PagesTest, BackAndNextFollowTheMode) {
  Start();
  windows.Click("CmdNext");
  EXPECT_TRUE(windows.Shown("OptServer")->Value);
  windows.Click("CmdNext");
  EXPECT_EQ(windows.VisibleForm(), "FrmAuthentication");
  EXPECT_EQ(Width(), 220);
  EXPECT_NE(Shown("LblNotRes"), "");
  windows.Type("TxtUsrName", " sa ");
  windows.Type("TxtPsWord", "secret");
  EXPECT_FALSE(Enabled("CmdNext"));
  windows.Type("TxtServer", "SRV1");
  windows.Click("CmdNext");
  EXPECT_EQ(windows.VisibleForm(), "FrmLocation");
  EXPECT_EQ(Shown("LblTitleMsg"), "Select Location ");
  EXPECT_FALSE(Visible("TxtServer"));
  EXPECT_EQ(Width(), 440);
  windows.Click("CmdPrev");
  EXPECT_EQ(windows.VisibleForm(), "FrmAuthentication");
  EXPECT_EQ(Shown("TxtUsrName"), " sa ") << "as it was typed";
  windows.Click("CmdPrev");
  EXPECT_EQ(windows.VisibleForm(), "FrmMode");
  windows.Click("OptClient");
  EXPECT_FALSE(windows.Shown("OptServer")->Value);
  windows.Click("CmdNext");
  EXPECT_EQ(windows.VisibleForm(), "FrmLocation");
  EXPECT_EQ(wizard.State.SqlUser, "sa");
  windows.Click("CmdPrev");
  EXPECT_EQ(windows.VisibleForm(), "FrmMode");
  EXPECT_TRUE(windows.Shown("OptClient")->Value);
  windows.Click("OptServer");
  windows.Click("CmdPrev");
  EXPECT_EQ(wizard.State.Mode, 1) << "only Next stores the choice";
  EXPECT_EQ(windows.VisibleForm(), "FrmType");
  windows.Close();
  EXPECT_TRUE(windows.Ended());
}

TEST_F(PagesTest, AuthenticationStoresFirstAndStaysUntilTheServerAgrees) {
  machine.Server.Password = "right";
  Start();
  windows.Click("CmdNext");
  windows.Click("CmdNext");
  EXPECT_FALSE(Enabled("CmdNext"));
  windows.Type("TxtUsrName", "sa");
  windows.Type("TxtPsWord", "wrong");
  windows.Type("TxtServer", "  ");
  ASSERT_TRUE(windows.Click("CmdNext"));  // a server of blanks enables Next, and fails
  EXPECT_EQ(wizard.State.ServerName, "");
  windows.Type("TxtServer", "SRV1");
  ASSERT_TRUE(windows.Click("CmdNext"));
  EXPECT_EQ(Shown("LblMsg"), "Authentication failed...");
  EXPECT_FALSE(Enabled("CmdNext"));
  EXPECT_EQ(wizard.State.SqlPassword, "wrong");
  windows.Type("TxtPsWord", "right");
  windows.Type("TxtUsrName", " ");
  EXPECT_FALSE(Enabled("CmdNext"));
  windows.Type("TxtUsrName", "sa");
  ASSERT_TRUE(windows.Click("CmdNext"));
  EXPECT_EQ(windows.VisibleForm(), "FrmLocation");
  EXPECT_EQ(machine.Journal.Texts("connect", "text").back(),
            "driver={SQL Server};server=SRV1;uid=sa;pwd=right;database=Master");
  EXPECT_TRUE(windows.Messages().empty());
}

TEST_F(PagesTest, AtItsLoadAuthenticationLooksAtTheLoginOnly) {
  for (const char* password : {"", "secret"}) {
    Wizard other(machine.Parts);
    other.State.SqlUser = "sa";
    other.State.SqlPassword = password;
    windows.Run([&] { other.Page<FrmAuthentication>().Show(); });
    EXPECT_EQ(Enabled("CmdNext"), *password != '\0');
  }
}

TEST_F(PagesTest, AChosenRootGetsProductAndApplicationFolder) {
  struct Case {
    const char* root;
    const char* installPath;
    const char* box;
  };
  const Case cases[] = {
      {"C:\\Progs", "C:\\Progs\\TA-LU", "C:\\Progs\\TA-LU\\App"},
      {"C:\\", "C:\\TA-LU", "C:\\TA-LU\\App"},
      {"C:\\TA-LU\\Old", "C:\\TA-LU\\Old", "C:\\TA-LU\\Old\\App"},
      {"C:\\TA-LU\\App\\", "C:\\TA-LU\\App\\", "C:\\TA-LU\\App\\"},
      {"C:\\Apple\\TA-LU", "C:\\Apple\\TA-LU", "C:\\Apple\\TA-LU"},
  };
  GoToLocation("OptFresh", "OptClient", "C:\\x");
  for (const Case& test : cases) {
    windows.BrowseAnswers = {test.root};
    windows.Click("CmdLocation");
    EXPECT_EQ(wizard.State.InstallPath, test.installPath);
    EXPECT_EQ(Shown("TxtInstaPath"), test.box);
  }
  windows.Click("CmdLocation");  // cancelled
  EXPECT_EQ(wizard.State.InstallPath, cases[4].installPath);
  windows.Hover("TxtInstaPath");
  EXPECT_EQ(windows.Shown("TxtInstaPath")->ToolTipText, "C:\\Apple\\TA-LU");
  windows.Focus("TxtServer");
  EXPECT_EQ(windows.Shown("TxtServer")->SelLength, 4);
  windows.Type("TxtInstaPath", "");
  EXPECT_TRUE(Enabled("CmdNext")) << "an emptied box leaves the button";
  windows.Type("TxtInstaPath", "C:\\Typed");
  windows.BrowseError = RuntimeError(error::kPathNotFound, "Path not found", "Shell");
  windows.Click("CmdLocation");
  EXPECT_EQ(windows.Messages().back(), "76/Path not found/Shell");
  EXPECT_EQ(wizard.State.InstallPath + Shown("TxtInstaPath"), "");
  // A name that is not read costs a box; the other is read, and the folder chosen.
  wizard.State.AppFolderName = "";
  windows.BrowseAnswers = {"C:\\Progs"};
  machine.Journal.FailRequest(machine.Journal.Requests() + 1, RuntimeError(error::kDeviceIO));
  windows.Click("CmdLocation");
  EXPECT_EQ(windows.Messages().back(), "57/Device I/O error/");
  EXPECT_EQ(Shown("TxtInstaPath"), "C:\\Progs\\TA-LU\\App");
}

TEST_F(PagesTest, UpgradeIntoTheOldFolderFillsTheLocation) {
  Start();
  windows.Click("OptUpgrade");
  windows.Click("ChkOldLocation");
  windows.BrowseAnswers = {"C:\\Old"};
  windows.Click("CmdLocation");
  windows.Click("CmdNext");
  windows.Click("OptClient");
  windows.Click("CmdNext");
  EXPECT_EQ(wizard.State.InstallPath, "C:\\Old\\TA-LU");
  EXPECT_EQ(Shown("TxtInstaPath"), "C:\\Old\\TA-LU\\App");

  // What is backed up is the old folder, wherever the new one is.
  machine.Disk.WriteFile("C:\\Old\\old.txt", "old");
  machine.Disk.WriteFile("C:\\New\\App\\new.txt", "new");
  windows.Type("TxtInstaPath", "C:\\New\\App");
  windows.Type("TxtServer", "SRV1");
  windows.Click("CmdNext");
  const std::string backup = "C:\\New\\App BackUp\\AppFolderBkp_7_3_2012_9_5";
  EXPECT_EQ(Get(backup + "\\old.txt"), "old");
  EXPECT_EQ(Get(backup + "\\new.txt"), "(none)");
}

TEST_F(PagesTest, NextMakesFoldersLogAndRecord) {
  Configure({Block("FreshDBSript", {"f.sql"})});
  machine.Disk.MakeFolders("C:\\Progs");
  GoToLocation("OptFresh", "OptClient", "C:\\Progs");
  const auto before = Story().size();
  windows.Click("CmdNext");
  EXPECT_EQ(Story().at(before), "CmdNext false") << "while it works";
  const std::string log = Get(app + "\\Ta-luErrLog.txt");
  EXPECT_TRUE(log.starts_with("//\r\nInstallation Started...\r\nApplication Folder created-" + app +
                              "\r\n\r\n//\r\nAppFolder created :" + app +
                              "\r\n\r\n//\r\nDBFolder created :" + app + "\\Data\r\n\r\n"))
      << log;
  EXPECT_EQ(Get(app + "\\Uninstall.dat"),
            "AppFolder:" + app + "\r\n\r\nDBFolder:" + app + "\\Data\r\n\r\nServer:SRV1\r\n\r\n");
  EXPECT_TRUE(machine.Disk.FolderExists(app + "\\Data"));
  EXPECT_EQ(windows.VisibleForm(), "FrmApplication");
}

TEST_F(PagesTest, NextOverAnInstallationBacksItUpAndGoesOnWithItsRecord) {
  machine.Disk.WriteFile(app + "\\Sub\\old.txt", "old");
  machine.Disk.WriteFile(app + "\\Ta-luErrLog.txt", "old log");
  machine.Disk.WriteFile(app + "\\Uninstall.dat", "old record\r\n");
  machine.Disk.Find(app + "\\Ta-luErrLog.txt")->ReadOnly = true;
  GoToLocation("OptFresh", "OptServer", "C:\\Progs");
  wizard.State.ServerName = "";  // Next does all its work and stays
  windows.Click("CmdNext");
  const std::string backup = "C:\\Progs\\TA-LU\\App BackUp\\AppFolderBkp_7_3_2012_9_5";
  EXPECT_EQ(windows.VisibleForm(), "FrmLocation");
  EXPECT_TRUE(Enabled("CmdNext"));
  EXPECT_EQ(Get(backup + "\\Sub\\old.txt"), "old");
  EXPECT_EQ(Get(backup + "\\Ta-luErrLog.txt"), "(none)") << "the reset comes first";
  EXPECT_EQ(Shown("LblMsg"), "Taking Backup of installation folders...");
  std::string pointers;
  for (const JournalEvent& event : machine.Journal.Events()) {
    if (event.Text("property") == "MousePointer") pointers += event.Text("value") + ",";
  }
  EXPECT_EQ(pointers, "11,0,");
  EXPECT_FALSE(Get(app + "\\Ta-luErrLog.txt").starts_with("old"));
  EXPECT_TRUE(Get(app + "\\Uninstall.dat").starts_with("old record\r\nAppFolder:"));
  windows.Click("CmdNext");
  EXPECT_EQ(std::ranges::count(machine.Journal.Texts("mkdir", "path"), backup), 1)
      << "one a minute";
  machine.Clock.Time.Minute = 6;
  windows.Click("CmdNext");
  EXPECT_EQ(Get("C:\\Progs\\TA-LU\\App BackUp\\AppFolderBkp_7_3_2012_9_6\\Sub\\old.txt"), "old");
}

TEST_F(PagesTest, ImpatientClicksDuringTheBackupAreRefused) {
  machine.Disk.WriteFile(app + "\\old.txt", "old");
  GoToLocation("OptFresh", "OptClient", "C:\\Progs");
  windows.DuringEvents = [this] {
    windows.Type("TxtServer", "SRV2");  // brings Next back
    windows.Click("CmdNext");
    windows.Click("CmdPrev");
  };
  windows.Click("CmdNext");
  EXPECT_EQ(windows.VisibleForm(), "FrmApplication");
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
  windows.Click("CmdNext");
  const std::string backup = "C:\\Progs\\TA-LU\\App BackUp\\AppFolderBkp_7_3_2012_9_";
  EXPECT_TRUE(machine.Disk.FolderExists(backup + "5"));
  EXPECT_FALSE(machine.Disk.FileExists(backup + "5\\old.txt"));
  EXPECT_FALSE(machine.Disk.FolderExists(backup + "6"));
  EXPECT_EQ(writers, 0) << "the copy was to have the new log";
}

TEST_F(PagesTest, FailuresOfNextAreShownAndLeaveItDisabled) {
  const std::string inUse = "Location in use,Please select Another Location...";
  machine.Disk.WriteFile("C:\\Other\\TA-LU\\App\\Uninstall.dat", "");
  GoToLocation("OptFresh", "OptClient", "C:\\Nowhere");
  windows.Click("CmdNext");
  EXPECT_EQ(windows.Messages().back(), "Path not found");
  EXPECT_FALSE(Enabled("CmdNext"));
  // A folder whose name the application's folder has already: the box reads the same each time.
  for (const bool enabled : {true, false, true}) {
    windows.BrowseAnswers = {"C:\\Apple"};
    windows.Click(enabled ? "CmdLocation" : "CmdNext");
    EXPECT_EQ(Shown("TxtInstaPath"), "C:\\Apple\\TA-LU");
    EXPECT_EQ(Enabled("CmdNext"), enabled);
  }

  machine.Disk.MakeFolders("C:\\Denied").Denied = true;
  windows.BrowseAnswers = {"C:\\Denied"};
  windows.Click("CmdLocation");
  EXPECT_TRUE(Enabled("CmdNext"));
  windows.Click("CmdNext");
  EXPECT_EQ(windows.Messages().back(), inUse);
  EXPECT_EQ(Shown("LblMsg"), inUse);
  EXPECT_FALSE(Enabled("CmdNext"));

  machine.Disk.Find("C:\\Other\\TA-LU\\App\\Uninstall.dat")->Writers = 1;
  windows.BrowseAnswers = {"C:\\Other"};
  windows.Click("CmdLocation");
  windows.Click("CmdNext");
  EXPECT_EQ(windows.Messages().back(), inUse);
  machine.Disk.Find("C:\\Other\\TA-LU\\App\\Uninstall.dat")->Writers = 0;
  machine.Disk.Find("C:\\Other\\TA-LU\\App\\Uninstall.dat")->ReadOnly = true;
  windows.Type("TxtServer", "SRV2");
  windows.Click("CmdNext");
  EXPECT_EQ(windows.Messages().back(), "Path/File access error");
  EXPECT_EQ(windows.VisibleForm(), "FrmLocation");
}

TEST_F(PagesTest, WithoutAnApplicationFolderNameOnlyTheRootIsMade) {
  Put("AppCfg.txt", Block("AppTitle", {"T"}) + Block("DBFolder", {"Data"}));
  machine.Disk.MakeFolders("C:\\Progs");
  GoToLocation("OptFresh", "OptClient", "C:\\Progs");
  windows.Click("CmdNext");
  EXPECT_EQ(machine.Journal.Texts("mkdir", "path"), std::vector<std::string>{"C:\\Progs\\TA-LU"});
  EXPECT_EQ(wizard.State.AppFolderPath, "");
  EXPECT_EQ(windows.Messages().back(), "Bad file name or number") << "the log was never started";
}

TEST_F(PagesTest, AddRegistryLogsAndSaves) {
  machine.Disk.MakeFolders(app);
  wizard.State.AppFolderPath = app;
  wizard.State.LogFileNumber = 1;
  wizard.Page<FrmLocation>().AddRegistry();
  EXPECT_EQ(machine.Journal.Texts("setting", "value"), std::vector<std::string>{app});
  machine.Journal.FailRequest(machine.Journal.Requests() + 3, RuntimeError(error::kPathNotFound));
  wizard.Page<FrmLocation>().AddRegistry();
  EXPECT_EQ(LogEntries().back(), "Failed to add Registry entry: TA-LU , Application , , " + app);
  wizard.State.OldInstallationFound = true;
  const auto entries = LogEntries().size();
  wizard.Page<FrmLocation>().AddRegistry();
  EXPECT_EQ(LogEntries().size(), entries);
  wizard.WriteErrLog("");
  EXPECT_TRUE(Get(app + "\\Ta-luErrLog.txt").ends_with(app + "\r\n\r\n//\r\n\r\n\r\n"));
}

}  // namespace
}  // namespace talu
