#include <algorithm>

#include "Pack.h"
#include "deploy/MdlCommon.h"
#include "deploy/MdlShellCopy.h"
#include "pages/FrmApplication.h"

namespace talu {
namespace {

class DeployTest : public PackTest {
 protected:
  DeployTest() { machine.Disk.MakeFolders("C:\\Progs"); }

  /// The log from the data sources on.
  std::vector<std::string> DeploymentLog() {
    std::vector<std::string> entries = LogEntries();
    const auto start = std::ranges::find(entries, "DSN creation started...");
    return {start, entries.end()};
  }
  /// The log's entries between two of `RunDeployment`'s own.
  std::vector<std::string> Between(const std::string& first, const std::string& last) {
    return Between(LogEntries(), first, last);
  }
  static std::vector<std::string> Between(const std::vector<std::string>& entries,
                                          const std::string& first, const std::string& last) {
    const auto start = std::ranges::find(entries, first);
    const auto end = std::find(start, entries.end(), last);
    EXPECT_NE(end, entries.end()) << last;
    return start == entries.end() ? entries : std::vector<std::string>(start + 1, end);
  }
  /// What a control was given, in order.
  std::vector<std::string> Given(const std::string& control) {
    std::vector<std::string> values;
    for (const JournalEvent& event : machine.Journal.Events()) {
      if (event.Text("control") == control) values.push_back(event.Text("value"));
    }
    return values;
  }
};

TEST_F(DeployTest, AWholeClientInstallationInOrder) {
  Configure({Block("SystemDSN",
                   {"SQL Server , Books , BooksDB , sa , x", "SQL Server,Stock,StockDB,sa,x"}),
             Block("RegnLocation", {"\\Parts"}), Block("SpecialRegn", {"x.ocx,more"}),
             Block("Shotcut", {"\\Desk.exe, start menu ,Desk", "\\Desk.exe,StartMenu,Desk",
                               "\\Desk.exe,desktop,Desk"}),
             Block("WriteSettings", {"\\Conn.txt,Server=,server"}),
             Block("AddOns", {"tool.exe", "extra.msi", "missing.exe", "Setup.EXE"}),
             Block("FinalMsg", {"A", "B", "  "})});
  Put("Application\\Parts\\grid.OCX", "g");
  Put("Application\\Desk.exe", "d");
  Put("Application\\desk.mdf", "m");
  Put("SpecialRegn\\x.ocx", "x");
  Put("AddOns\\tool.exe", "t");
  Put("AddOns\\extra.msi", "m");
  machine.Programs.ExitCodes["TOOL.EXE"] = 7;
  Install("OptClient");

  const std::string grid = "regsvr32 /s \"" + app + "\\Parts\\grid.OCX\"";
  const std::string special = "regsvr32 /s \"C:\\Windows\\system\\x.ocx\"";
  const std::string menu = "C:\\ProgramData\\Microsoft\\Windows\\Start Menu\\TALU\\App\\Desk.lnk";
  EXPECT_EQ(DeploymentLog(),
            (std::vector<std::string>{
                "DSN creation started...",
                "creating - SQL Server,Stock,StockDB,sa,x",
                "creating - SQL Server , Books , BooksDB , sa , x",
                "//\r\nOperation is not allowed when the object is open.\r\n",
                "DSN(s) created successfully",
                "Started Copying files...",
                "//\r\nCopying file - " + app + "\\D:\\Pack\\Application\\Desk.exe",
                "//\r\nCreating New Folder - " + app + "\\Parts",
                "//\r\nCopying file - " + app + "\\Parts\\D:\\Pack\\Application\\Parts\\grid.OCX",
                "File copying finished Successfully....",
                "File Registration started...",
                grid + " /U",
                grid,
                "All Files registered successfully",
                "Special Registration started...",
                special + " /U",
                special,
                "Special Registration finished.",
                "Creating Shotcuts...",
                "Shotcut:" + menu + " created",
                "Shotcut:C:\\Users\\Public\\Desktop\\Desk.lnk created",
                "Writing Settings started...",
                "Writing Settings not Finished",
                "Execution of AddOn packs started...",
                "Execution of tool.exe AddOn pack started",
                "Process Finished, Exit Code 7",
                "Execution of extra.msi AddOn pack started",
                "msiexec /a \"D:\\Pack\\AddOns\\extra.msi\" /quiet",
                "Process Finished, Exit Code 0",
                "Execution of missing.exe AddOn pack started",
                "Process Finished, Exit Code -1",
                "Process Finished, Exit Code -1",
                "Final Message started...",
                "Final Message write successfully",
                "Installation finished."}));
  EXPECT_EQ(Given("Lblmsg"),
            (std::vector<std::string>{
                "DSN creation started. Please Wait...",
                "DSN(s) created successfully",
                "Started Copying files. Please wait....",
                "Copying - " + app + "\\Desk.exe",
                "Copying - " + app + "\\Parts\\grid.OCX",
                "File copying finished Successfully....",
                "File Registration started. Please Wait...",
                "Registering - " + app + "\\Parts\\grid.OCX",
                "All Files registered successfully",
                "Special Registration started. Please Wait...",
                "Special Registration finished.",
                "Creating Shotcuts...",
                "Writing Settings started...",
                "Writing Settings not Finished",
                "Execution of AddOn packs started...",
                "Execution of tool.exe AddOn pack started.Please follow instructions...",
                "Execution of extra.msi AddOn pack started.Please wait...",
                "Execution of missing.exe AddOn pack started.Please follow instructions...",
                "Please read below instructions carefully...",
                "Installation finished. Click Finish to Exit."}));
  EXPECT_EQ(Records(),
            (std::vector<std::string>{
                "AppFolder:" + app, "DBFolder:" + app + "\\Data", "Server:SRV1",
                "SystemDSN:SQL Server,Stock,StockDB,sa,x",
                "SystemDSN:SQL Server , Books , BooksDB , sa , x",
                "ShotcutFolder:C:\\ProgramData\\Microsoft\\Windows\\Start Menu\\TALU\\App",
                "Shotcut:" + menu, "Shotcut:C:\\Users\\Public\\Desktop\\Desk.lnk",
                "AddOns:tool.exe", "AddOns:extra.msi", "AddOns:missing.exe", "AddOns:Setup.EXE"}));

  // An entry comes after what it tells of.
  const std::vector<std::string> story = Story();
  const auto behind = [&story](const std::string& line, std::ptrdiff_t count) {
    const auto at = std::ranges::find(story, line);
    EXPECT_GT(story.end() - at, count) << line;
    return std::vector<std::string>(at + 1, at + 1 + count);
  };
  EXPECT_EQ(behind("copy D:\\Pack\\Application\\Desk.exe", 2),
            (std::vector<std::string>{
                "ShpProgBar 1474",
                "log //|//|Copying file - C:\\Progs\\TA-LU\\App\\D:\\Pack\\Applicat"}));
  EXPECT_EQ(behind(("start " + grid + " /U").substr(0, 60), 1),
            std::vector<std::string>{("log //|" + grid + " /U").substr(0, 60)});
  EXPECT_EQ(machine.Journal.Texts("dsn", "attributes").back(),
            std::string("DSN=Books\0SERVER=SRV1\0DATABASE=BooksDB", 38));
  EXPECT_EQ(machine.Journal.Texts("connect", "text"),
            std::vector<std::string>{"DSN=Stock; UID=sa; PWD=x"});
  EXPECT_EQ(machine.Journal.Texts("run", "command").at(1),
            "msiexec /i \"D:\\Pack\\AddOns\\extra.msi\" /quiet");
  EXPECT_EQ(machine.Journal.Texts("copy", "flags").front(), "6416");
  EXPECT_EQ(machine.Journal.Texts("copy", "to").back(), "C:\\Windows\\system");
  EXPECT_EQ(Get("C:\\Windows\\system\\x.ocx"), "x");
  EXPECT_EQ(machine.Journal.Texts("start", "window").front(), "2");
  EXPECT_EQ(machine.Journal.Texts("shortcut", "target").front(), "C:\\Progs\\TA-LU\\App\\Desk.exe");
  EXPECT_EQ(Get(app + "\\Conn.txt"), "Server=SRV1\r\n");
  EXPECT_EQ(Get(app + "\\desk.mdf"), "(none)");
  EXPECT_EQ(Shown("LblFinalMsg"), "\rA\rB");
  EXPECT_EQ(Shown("LblNotRes"), "");
  EXPECT_EQ(Width(), 7325);
  EXPECT_TRUE(windows.Click("CmdNext"));
  EXPECT_TRUE(windows.Ended());
}

TEST_F(DeployTest, WhatAFailureLeavesIsWhatTheNextStatementWorksOn) {
  struct Case {
    const char* what;
    std::vector<std::string> blocks;
    const char* entry;  // the disk is full so many requests behind the first entry with this text
    int behind;
    const char* first;  // between these entries ...
    const char* last;
    std::vector<std::string> log;  // ... stand these
    const char* words = "(none)";
  };
  const std::string full = "//\r\nDisk full\r\n";
  const std::string denied = "//\r\nPath/File access error\r\n";
  const auto command = [](const std::string& path, const char* end) {
    return "regsvr32 /s \"" + path + "\"" + end;
  };
  const std::string part = app + "\\Parts\\a.dll";
  const std::string x = "C:\\Windows\\system\\x.ocx";
  const std::string y = "C:\\Windows\\system\\y.ocx";
  const std::string open = "C:\\Users\\Public\\Desktop\\A.lnk";
  const std::string own = "Shotcut:C:\\Users\\Operator\\Desktop\\A.lnk";
  const char* registering = "File Registration started...";
  const char* registered = "All Files registered successfully";
  const char* special = "Special Registration started...";
  const char* finished = "Special Registration finished.";
  const Case cases[] = {
      {"the entry for a place that is not there",
       {Block("RegnLocation", {"\\None", "\\Parts"})},
       "Path not found",
       0,
       registering,
       registered,
       {full, command(part, " /U"), command(part, "")}},
      {"the entry for a folder that may not be listed",
       {},
       "Permission denied",
       0,
       registering,
       registered,
       {full, command(part, " /U"), command(part, "")}},
      {"a place that is not read is the one before",
       {Block("RegnLocation", {"\\Parts", "\\Other"})},
       "a.dll\"\r\n",
       2,
       registering,
       registered,
       {command(part, " /U"), command(part, ""), full, command(part, " /U"), command(part, "")}},
      {"the entry of the special registration: the shortcuts are made",
       {Block("SpecialRegn", {"x.ocx", "", "y.ocx"}), Block("Shotcut", {"\\a.exe,Desktop,A"})},
       "Subscript out of range",
       0,
       special,
       "Writing Settings not Finished",
       {command(x, " /U"), command(x, ""), full, "Creating Shotcuts...", denied,
        "Shotcut:" + open + " can't created", own + " created"}},
      {"a special component that is not read is the one before",
       {Block("SpecialRegn", {"x.ocx", "y.ocx"})},
       "x.ocx\"\r\n",
       1,
       special,
       finished,
       {command(x, " /U"), command(x, ""), full, command(x, " /U"), command(x, "")}},
      {"the system's folder that is not known is the one before",
       {Block("SpecialRegn", {"x.ocx", "y.ocx"})},
       "x.ocx\"\r\n",
       3,
       special,
       finished,
       {command(x, " /U"), command(x, ""), full, command(y, " /U"), command(y, "")}},
      {"a shortcut that is not made is the one before, and is saved again",
       {Block("Shotcut", {"\\a.exe,Desktop,A"})},
       "can't created",
       1,
       "Creating Shotcuts...",
       "Writing Settings not Finished",
       {denied, "Shotcut:" + open + " can't created", full, denied, own + " can't created",
        own + " created"}},
      {"the shell that is not there is asked for its folders",
       {Block("Shotcut", {"\\a.exe,Desktop,A"})},
       "Creating Shotcuts...",
       3,
       "Creating Shotcuts...",
       "Writing Settings not Finished",
       {full, "//\r\nObject variable not set\r\n"}},
      {"a last word that is not read is the one before",
       {Block("FinalMsg", {"A", "B", "C"})},
       "Final Message started...",
       5,
       "Final Message started...",
       "Installation finished.",
       {full, "Final Message write successfully"},
       "\rA\rA\rC"},
  };
  for (const Case& test : cases) {
    SCOPED_TRACE(test.what);
    const auto stage = PlayFailing(test.entry, test.behind, [&](PackTest& play) {
      play.machine.Disk.MakeFolders(app + "\\Bad").Denied = true;
      play.machine.Disk.Find("C:\\Users\\Public\\Desktop")->Denied = true;
      play.Configure(test.blocks);
      play.Put("Application\\Parts\\a.dll", "a");
      play.Put("SpecialRegn\\x.ocx", "x");
      play.Install("OptClient");
    });
    EXPECT_EQ(Between(stage->LogEntries(), test.first, test.last), test.log);
    EXPECT_TRUE(*test.words == '(' || stage->Shown("LblFinalMsg") == test.words);
  }
}

TEST_F(DeployTest, PendingEventsAreLetThroughAfterEachUnitOfWork) {
  Configure({Block("RegnLocation", {"\\Parts"}), Block("WriteSettings", {"\\c.txt,S=,SERVER"}),
             Block("AddOns", {"a.exe", "b.exe"})});
  Put("Application\\Parts\\a.dll", "");
  Put("Application\\Parts\\b.dll", "");
  NoteEvents();
  Install("OptClient");
  std::vector<std::string> behind;
  std::string last;
  for (const std::string& line : Story()) {
    if (line == "events") behind.push_back(last);
    if (line.starts_with("log ") || line.starts_with("record ")) last = line;
  }
  const std::string copied = "log //|//|Copying file - C:\\Progs\\TA-LU\\App\\Parts\\D:\\Pack\\Ap";
  EXPECT_EQ(
      behind,
      (std::vector<std::string>{
          "log //|Started Copying files...", copied, copied, "log //|File Registration started...",
          "log //|regsvr32 /s \"C:\\Progs\\TA-LU\\App\\Parts\\a.dll\"",
          "log //|Writing Settings started...", "log //|Execution of AddOn packs started...",
          "record AddOns:a.exe", "record AddOns:a.exe", "record AddOns:b.exe"}));
  EXPECT_EQ(wizard.TextFiles.FreeFile(), 3) << "a file was left open";
}

TEST_F(DeployTest, DataSourcesAreTheMachines) {
  struct : OdbcInstaller {
    bool SQLConfigDataSource(int request, const std::string&, const std::string&) override {
      return request == 4;
    }
  } odbc;
  Machine parts{.Windows = windows,
                .Files = machine.Files,
                .Shell = machine.Files,
                .DataAccess = machine.Server,
                .Odbc = odbc,
                .Programs = machine.Programs,
                .Scripting = machine.Scripting,
                .Settings = machine.Settings,
                .Clock = machine.Clock,
                .CodePage = machine.CodePage,
                .AppPath = ""};
  Wizard other(parts);
  EXPECT_TRUE(other.Page<FrmApplication>().CreateDSN("SQL Server", "DSN=Books"));
}

TEST_F(DeployTest, WithoutAnApplicationFolderTheLaterStepsStillRun) {
  Configure({Block("Shotcut", {"\\a.exe,Desktop,A"}), Block("AddOns", {"a.exe"})});
  Install("OptClient");
  EXPECT_EQ(
      DeploymentLog(),
      (std::vector<std::string>{
          "DSN creation started...", "DSN(s) created successfully", "Started Copying files...",
          "Folder 'Aplication' Not found in the pack....", "Writing Settings not Finished",
          "Execution of AddOn packs started...", "Execution of a.exe AddOn pack started",
          "Process Finished, Exit Code -1", "Final Message started...",
          "Final Message write successfully", "Installation finished."}));
  EXPECT_TRUE(windows.Shown("CmdNext")->Enabled);
}

TEST_F(DeployTest, TheBarStartsByModeAndTakesTheCopysShare) {
  for (const auto& [mode, widths] :
       {std::pair{"OptServer", std::vector<std::string>{"5860", "6592", "7325"}},
        std::pair{"OptClient", std::vector<std::string>{"1465", "4395", "7325"}}}) {
    machine.Disk.MakeFolders("D:\\Pack\\Application");
    Wizard fresh(machine.Parts);
    const auto before = machine.Journal.Events().size();
    fresh.State.Mode = std::string(mode) == "OptClient" ? 1 : 0;
    fresh.State.AppFolderPath = "C:\\Progs";
    fresh.State.LogFileNumber = 1;
    windows.Run([&] { fresh.Page<FrmApplication>().Show(); });
    std::vector<std::string> seen;
    for (auto at = before; at < machine.Journal.Events().size(); ++at) {
      const JournalEvent& event = machine.Journal.Events()[at];
      if (event.Text("control") == "ShpProgBar") seen.push_back(event.Text("value"));
    }
    EXPECT_EQ(seen, widths) << mode;
  }
}

TEST_F(DeployTest, CopyGoesOnPastWhatItCannotCopy) {
  Put("Application\\a", "short");
  Put("Application\\z", "short");
  Put("Application\\Data.MDF", "upper case is copied");
  Put("Application\\log.ldf", "is not");
  Put("Application\\locked.txt", "new");
  Put("Application\\Denied\\x.txt", "x");
  Put("Application\\Sub\\y.txt", "y");
  machine.Disk.Find("D:\\Pack\\Application\\Denied")->Denied = true;
  machine.Disk.WriteFile(app + "\\locked.txt", "old");
  machine.Disk.Find(app + "\\locked.txt")->Writers = 1;
  machine.Disk.MakeFolders(app + "\\Sub");
  Install("OptClient");
  const std::string from = "D:\\Pack\\Application";
  EXPECT_EQ(
      Between("Started Copying files...", "File copying finished Successfully...."),
      (std::vector<std::string>{
          "//\r\nCan't copy " + from + "\\ato" + app + "\\a-Invalid procedure call or argument\r\n",
          "//\r\nCopying file - " + app + "\\" + from + "\\a",
          "//\r\nCopying file - " + app + "\\" + from + "\\Data.MDF",
          "//\r\nCopying file - " + app + "\\" + from + "\\locked.txt",
          "//\r\nCan't copy " + from + "\\zto" + app + "\\z-Invalid procedure call or argument\r\n",
          "//\r\nCopying file - " + app + "\\" + from + "\\z",
          "//\r\nCreating New Folder - " + app + "\\Denied",
          "//\r\nFolder Already exists - " + app + "\\Sub",
          "//\r\nCopying file - " + app + "\\Sub\\" + from + "\\Sub\\y.txt"}));
  EXPECT_EQ(Get(app + "\\locked.txt"), "old") << "a refusal of the shell is not looked at";
  EXPECT_EQ(Get(app + "\\Sub\\y.txt"), "y");
}

TEST_F(DeployTest, TheBarCreepsToItsLimitWhileCopying) {
  for (int i = 0; i < 30; ++i) Put("Application\\file" + std::to_string(i), "");
  Install("OptClient");
  const std::vector<std::string> widths = Given("ShpProgBar");
  EXPECT_EQ(widths.at(widths.size() - 3), "1495");  // 30 files after 1465, then the copy's share
  EXPECT_EQ(widths.at(widths.size() - 2), "4425");

  wizard.Page<FrmApplication>().ShpProgBar.Width = 6695;
  CopyFolderFiles(wizard, wizard.Page<FrmApplication>().View, "D:\\Pack\\Application", app);
  EXPECT_EQ(Width(), 6700);

  EXPECT_TRUE(ShellCopy(wizard, "D:\\Pack\\Application\\file1", app + "\\x", false));
  EXPECT_FALSE(ShellCopy(wizard, "D:\\Pack\\none", app + "\\x", true));
  const auto flags = machine.Journal.Texts("copy", "flags");
  EXPECT_EQ(flags.at(flags.size() - 2) + "," + flags.back(), "64,6416");
}

TEST_F(DeployTest, DataSourcesOfOddLines) {
  Configure({Block("SystemDSN", {"Other,Third,T,u,p", "SQL Server,Second",
                                 "Microsoft Access Driver (*.mdb),First,C:\\a.mdb,u,p"})});
  Install("OptClient");
  const std::string access("DSN=First\0DBQ=C:\\a.mdb\0UID=u\0PWD=p", 34);
  EXPECT_EQ(machine.Journal.Texts("dsn", "attributes"),
            (std::vector<std::string>{access, access, access}));
  EXPECT_EQ(machine.Journal.Texts("dsn", "driver").back(), "Other");
  EXPECT_EQ(
      Between("DSN creation started...", "DSN(s) created successfully"),
      (std::vector<std::string>{"creating - Microsoft Access Driver (*.mdb),First,C:\\a.mdb,u,p",
                                "creating - SQL Server,Second", "//\r\nSubscript out of range\r\n",
                                "//\r\nSubscript out of range\r\n", "creating - Other,Third,T,u,p",
                                "//\r\nOperation is not allowed when the object is open.\r\n"}));
  EXPECT_EQ(Records().size(), 6U) << "each line is recorded, whatever became of it";
  EXPECT_EQ(Given("Lblmsg").at(1), "Started Copying files. Please wait....")
      << "the block's first line was refused";
  EXPECT_EQ(Given("ShpProgBar").at(5), "1477") << "a step of 4 for each";
}

TEST_F(DeployTest, EachStatementOfAnEmptyDataSourceFails) {
  Configure({Block("SystemDSN", {"never read", "", "counted"})});
  Install("OptClient");
  const std::string error = "//\r\nSubscript out of range\r\n";
  const std::vector<std::string> entries =
      Between("DSN creation started...", "DSN(s) created successfully");
  // The test of the driver, the attributes, the registration, the connection.
  EXPECT_EQ(entries.at(0), "creating - ");
  EXPECT_EQ(std::ranges::count(entries.begin(), entries.begin() + 5, error), 4);
}

TEST_F(DeployTest, StepsWithoutLinesShowAndLogNothingOfTheirOwn) {
  Put("Application\\a.txt", "");
  Install("OptClient");
  EXPECT_EQ(Given("Lblmsg").size(), 10U) << "no data source, shortcut, setting, add-on, last word";
  EXPECT_EQ(Between("Special Registration finished.", "Installation finished."),
            (std::vector<std::string>{"Writing Settings not Finished", "Final Message started...",
                                      "Final Message write successfully"}));
}

TEST_F(DeployTest, AServerThatCannotBeReachedEndsTheProgram) {
  Configure({Block("SystemDSN", {"SQL Server,Books,BooksDB,sa,x"})});
  Put("Application\\Desk.exe", "d");
  machine.Server.Reachable = false;
  Install("OptClient");
  EXPECT_TRUE(windows.Ended());
  const std::string message = "Connection to Server failed, Can not continue installation";
  const std::vector<std::string> story = Story();
  ASSERT_GT(story.size(), 5U);
  EXPECT_EQ(std::vector<std::string>(story.end() - 5, story.end()),
            (std::vector<std::string>{
                "log //|//|[Microsoft][ODBC SQL Server Driver][DBNETLIB]SQL S",
                "msgbox " + message.substr(0, 53), "log //|" + message.substr(0, 53),
                "Lblmsg " + message.substr(0, 53), "end"}));
  EXPECT_EQ(Records().size(), 3U) << "a source that cannot be used is not recorded";
}

TEST_F(DeployTest, RegistrationWalksAndSurvives) {
  Configure({Block("RegnLocation", {"\\Missing", "\\Parts"})});
  Put("Application\\Parts\\a.dll.bak", "");
  Put("Application\\Parts\\b.Ocx.dll", "");
  Put("Application\\Parts\\Deep\\c.dll", "");
  Install("OptClient");
  const auto commands = machine.Journal.Texts("start", "command");
  ASSERT_EQ(commands.size(), 8U);  // b twice
  EXPECT_EQ(commands.at(2), commands.at(4));
  EXPECT_EQ(commands.back(), "regsvr32 /s \"" + app + "\\Parts\\Deep\\c.dll\"");
  EXPECT_EQ(Between("File Registration started...", "All Files registered successfully").front(),
            "//\r\nPath not found\r\n");
}

TEST_F(DeployTest, WithoutPlacesToRegisterTheWholeFolderIsWalked) {
  Put("Application\\a.dll", "");
  Put("Application\\One\\Two\\b.ocx", "");
  Install("OptClient");
  const auto commands = machine.Journal.Texts("start", "command");
  ASSERT_EQ(commands.size(), 4U);
  EXPECT_EQ(commands.at(0), "regsvr32 /s \"" + app + "\\a.dll\" /U");
  EXPECT_EQ(commands.at(3), "regsvr32 /s \"" + app + "\\One\\Two\\b.ocx\"");
}

TEST_F(DeployTest, ManyRegistrationsStepTheBarBack) {
  Configure({Block("RegnLocation", {"\\Parts"})});
  for (int i = 0; i < 750; ++i) Put("Application\\Parts\\" + std::to_string(1000 + i) + ".dll", "");
  Install("OptClient");
  int most = 0;
  bool steppedBack = false;
  for (const JournalEvent& event : machine.Journal.Events()) {
    if (event.Text("control") != "ShpProgBar" || event.Text("form") != "FrmApplication") continue;
    const int width = std::stoi(event.Text("value"));
    if (width == 7325) break;
    steppedBack = steppedBack || (width == 7325 - 4 - 500 && most > width);
    most = std::max(most, width);
  }
  EXPECT_LE(most, 7325 - 1);
  EXPECT_TRUE(steppedBack);
}

TEST_F(DeployTest, AShortcutThatCannotBeMadeTriesTheNextFolderOfItsName) {
  Configure({Block("Shotcut", {"\\a.exe,Desktop,A", "\\a.exe,Nowhere,A", "a.exe,Desktop",
                               "b.exe, DESKTOP ,B"})});
  machine.Disk.MakeFolders("D:\\Pack\\Application");
  machine.Disk.Find("C:\\Users\\Public\\Desktop")->Denied = true;
  Install("OptClient");
  EXPECT_EQ(Between("Creating Shotcuts...", "Writing Settings not Finished"),
            (std::vector<std::string>{"//\r\nPath/File access error\r\n",
                                      "Shotcut:C:\\Users\\Public\\Desktop\\A.lnk can't created",
                                      "Shotcut:C:\\Users\\Operator\\Desktop\\A.lnk created",
                                      "//\r\nSubscript out of range\r\n",
                                      "//\r\nPath/File access error\r\n",
                                      "Shotcut:C:\\Users\\Public\\Desktop\\B.lnk can't created",
                                      "Shotcut:C:\\Users\\Operator\\Desktop\\B.lnk created"}));
  EXPECT_EQ(Records().back(), "Shotcut:C:\\Users\\Operator\\Desktop\\B.lnk");
  EXPECT_EQ(machine.Journal.Texts("shortcut", "target").back(), "C:\\Progs\\TA-LU\\Appb.exe");
}

TEST_F(DeployTest, SettingsFilesOfOddLines) {
  Configure({Block("WriteSettings",
                   {"\\a.TXT,x,SERVER", "\\Same.txt,first,SERVER", "\\Same.txt, key = , password ",
                    "\\Plain.txt,alone,other", "\\Short.txt,x", "\\Late.txt,x,SERVER"}),
             Block("AddOns", {"a.exe"})});
  wizard.State.SqlPassword = "secret";
  Install("OptClient");
  EXPECT_EQ(Get(app + "\\a.TXT"), "(none)");
  EXPECT_EQ(Get(app + "\\Same.txt"), " key = secret\r\n");
  EXPECT_EQ(Get(app + "\\Plain.txt"), "alone\r\n");
  EXPECT_EQ(Get(app + "\\Late.txt"), "(none)") << "the step ends at the short line";
  EXPECT_EQ(Between("Writing Settings started...", "Execution of AddOn packs started..."),
            std::vector<std::string>{"//\r\nSubscript out of range\r\n"});
  Configure({Block("WriteSettings", {"\\Plain.txt,new,SERVER"})});
  machine.Disk.Find(app + "\\Plain.txt")->ReadOnly = true;
  EXPECT_THROW(wizard.Page<FrmApplication>().WriteSettings(), RuntimeError);
  EXPECT_EQ(Get(app + "\\Plain.txt"), "alone\r\n");
}

TEST_F(DeployTest, AnErrorInTheAddOnsEndsThatStepOnly) {
  Configure({Block("AddOns", {"a.exe.msi", "b.exe"}), Block("FinalMsg", {"Done"})});
  Put("AddOns\\a.exe.msi", "");
  windows.DuringEvents = [this] { windows.Click("CmdNext"); };  // a page at work takes none
  Install("OptClient");
  const auto commands = machine.Journal.Texts("run", "command");
  ASSERT_EQ(commands.size(), 3U);  // both kinds, the program first
  EXPECT_EQ(commands.at(0), "D:\\Pack\\AddOns\\a.exe.msi");
  EXPECT_EQ(Shown("LblFinalMsg"), "\rDone");
}

}  // namespace
}  // namespace talu
