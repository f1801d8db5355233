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

  /// What the registration tool was started with.
  Texts Registered() { return machine.Journal.Texts("start", "command"); }
};

TEST_F(DeployTest, AWholeClientInstallationInOrder) {
  Configure(
      {"SystemDSN=SQL Server , Books , BooksDB , sa , x|SQL Server,Stock,StockDB,sa,x",
       "RegnLocation=\\Parts", "SpecialRegn=x.ocx,more",
       "Shotcut=\\Desk.exe, start menu ,Desk|\\Desk.exe,StartMenu,Desk|\\Desk.exe,desktop,Desk",
       "WriteSettings=\\Conn.txt,Server=,server", "AddOns=tool.exe|extra.msi|missing.exe|Setup.EXE",
       "FinalMsg=A|B|  "});
  for (const char* file :
       {"Application\\Parts\\grid.OCX", "Application\\Desk.exe", "Application\\desk.mdf",
        "SpecialRegn\\x.ocx", "AddOns\\tool.exe", "AddOns\\extra.msi"}) {
    Put(file, "");
  }
  machine.Programs.ExitCodes["TOOL.EXE"] = 7;
  NoteEvents();
  Install("OptClient");
  EXPECT_TRUE(windows.Click("CmdNext"));
  EXPECT_EQ(Joined(Story("show FrmApplication")), R"(
Lblmsg DSN creation started. Please Wait...
log DSN creation started...
log creating - SQL Server,Stock,StockDB,sa,x
dsn SQL Server DSN=Stock&SERVER=SRV1&DATABASE=StockDB
connect DSN=Stock; UID=sa; PWD=x
ShpProgBar 1469
record SystemDSN:SQL Server,Stock,StockDB,sa,x
log creating - SQL Server , Books , BooksDB , sa , x
dsn SQL Server DSN=Books&SERVER=SRV1&DATABASE=BooksDB
log //|Operation is not allowed when the object is open.
ShpProgBar 1473
record SystemDSN:SQL Server , Books , BooksDB , sa , x
Lblmsg DSN(s) created successfully
log DSN(s) created successfully
Lblmsg Started Copying files. Please wait....
log Started Copying files...
events
Lblmsg Copying - C:\Progs\TA-LU\App\Desk.exe
copy D:\Pack\Application\Desk.exe C:\Progs\TA-LU\App\Desk.exe 6416
ShpProgBar 1474
log //|Copying file - C:\Progs\TA-LU\App\D:\Pack\Application\Desk.exe
events
mkdir C:\Progs\TA-LU\App\Parts
log //|Creating New Folder - C:\Progs\TA-LU\App\Parts
Lblmsg Copying - C:\Progs\TA-LU\App\Parts\grid.OCX
copy D:\Pack\Application\Parts\grid.OCX C:\Progs\TA-LU\App\Parts\grid.OCX 6416
ShpProgBar 1475
log //|Copying file - C:\Progs\TA-LU\App\Parts\D:\Pack\Application\Parts\grid.OCX
events
ShpProgBar 4405
Lblmsg File copying finished Successfully....
log File copying finished Successfully....
Lblmsg File Registration started. Please Wait...
log File Registration started...
events
Lblmsg Registering - C:\Progs\TA-LU\App\Parts\grid.OCX
start regsvr32 /s "C:\Progs\TA-LU\App\Parts\grid.OCX" /U 2
log regsvr32 /s "C:\Progs\TA-LU\App\Parts\grid.OCX" /U
start regsvr32 /s "C:\Progs\TA-LU\App\Parts\grid.OCX" 2
log regsvr32 /s "C:\Progs\TA-LU\App\Parts\grid.OCX"
ShpProgBar 4409
Lblmsg All Files registered successfully
log All Files registered successfully
Lblmsg Special Registration started. Please Wait...
log Special Registration started...
copy D:\Pack\SpecialRegn\x.ocx C:\Windows\system 6416
start regsvr32 /s "C:\Windows\system\x.ocx" /U 2
log regsvr32 /s "C:\Windows\system\x.ocx" /U
start regsvr32 /s "C:\Windows\system\x.ocx" 2
log regsvr32 /s "C:\Windows\system\x.ocx"
Lblmsg Special Registration finished.
log Special Registration finished.
Lblmsg Creating Shotcuts...
log Creating Shotcuts...
mkdir C:\ProgramData\Microsoft\Windows\Start Menu\TALU
mkdir C:\ProgramData\Microsoft\Windows\Start Menu\TALU\App
shortcut C:\ProgramData\Microsoft\Windows\Start Menu\TALU\App\Desk.lnk C:\Progs\TA-LU\App\Desk.exe  C:\Progs\TA-LU\App\Desk.exe
record ShotcutFolder:C:\ProgramData\Microsoft\Windows\Start Menu\TALU\App
record Shotcut:C:\ProgramData\Microsoft\Windows\Start Menu\TALU\App\Desk.lnk
log Shotcut:C:\ProgramData\Microsoft\Windows\Start Menu\TALU\App\Desk.lnk created
shortcut C:\Users\Public\Desktop\Desk.lnk C:\Progs\TA-LU\App\Desk.exe  C:\Progs\TA-LU\App\Desk.exe
record Shotcut:C:\Users\Public\Desktop\Desk.lnk
log Shotcut:C:\Users\Public\Desktop\Desk.lnk created
Lblmsg Writing Settings started...
log Writing Settings started...
events
print C:\Progs\TA-LU\App\Conn.txt Server=SRV1
Lblmsg Writing Settings not Finished
log Writing Settings not Finished
Lblmsg Execution of AddOn packs started...
log Execution of AddOn packs started...
events
Lblmsg Execution of tool.exe AddOn pack started.Please follow instructions...
log Execution of tool.exe AddOn pack started
run D:\Pack\AddOns\tool.exe 7
log Process Finished, Exit Code 7
record AddOns:tool.exe
events
events
Lblmsg Execution of extra.msi AddOn pack started.Please wait...
log Execution of extra.msi AddOn pack started
log msiexec /a "D:\Pack\AddOns\extra.msi" /quiet
run msiexec /i "D:\Pack\AddOns\extra.msi" /quiet 0
log Process Finished, Exit Code 0
record AddOns:extra.msi
events
events
Lblmsg Execution of missing.exe AddOn pack started.Please follow instructions...
log Execution of missing.exe AddOn pack started
run D:\Pack\AddOns\missing.exe -1
log Process Finished, Exit Code -1
record AddOns:missing.exe
events
events
log Process Finished, Exit Code -1
record AddOns:Setup.EXE
events
log Final Message started...
Lblmsg Please read below instructions carefully...
LblFinalMsg ~A
LblFinalMsg ~A~B
log Final Message write successfully
ShpProgBar 7325
LblNotRes
CmdNext true
Lblmsg Installation finished. Click Finish to Exit.
log Installation finished.
end
)");
  EXPECT_EQ(wizard.TextFiles.FreeFile(), 3) << "a file was left open";
}

TEST_F(DeployTest, WhatAFailureLeavesIsWhatTheNextStatementWorksOn) {
  // The disk is full so many requests behind the first entry with a text; between the step's first
  // entry and the one behind it there stands ...
  const auto leaves = [this](const char* what, const Texts& blocks, const char* entry, int behind,
                             const std::pair<const char*, const char*>& step, const Texts& log) {
    SCOPED_TRACE(what);
    auto stage = PlayFailing(entry, behind, [&](PackTest& play) {
      play.machine.Disk.MakeFolders(app + "\\Bad").Denied = true;
      play.machine.Disk.Find("C:\\Users\\Public\\Desktop")->Denied = true;
      play.Configure(blocks);
      play.Put("Application\\Parts\\a.dll", "a");
      play.Put("SpecialRegn\\x.ocx", "x");
      play.Install("OptClient");
    });
    EXPECT_EQ(stage->Between(step.first, step.second), log);
    return stage;
  };
  const std::pair registering = {"File Registration started...",
                                 "All Files registered successfully"};
  const std::pair special = {"Special Registration started...", "Special Registration finished."};
  const std::pair shortcuts = {"Creating Shotcuts...", "Writing Settings not Finished"};
  const std::pair words = {"Final Message started...", "Installation finished."};
  const auto command = [](const std::string& path, const char* end = "") {
    return "regsvr32 /s \"" + path + "\"" + end;
  };
  const auto both = [&](const std::string& path) {
    return Texts{command(path, " /U"), command(path)};
  };
  const std::string full = "//|Disk full|";
  const std::string denied = "//|Path/File access error|";
  const std::string part = app + "\\Parts\\a.dll";
  const std::string x = "C:\\Windows\\system\\x.ocx";
  const std::string open = "Shotcut:C:\\Users\\Public\\Desktop\\A.lnk can't created";
  const std::string own = "Shotcut:C:\\Users\\Operator\\Desktop\\A.lnk";
  leaves("the entry for a place that is not there", {"RegnLocation=\\None|\\Parts"},
         "Path not found", 0, registering, All({{full}, both(part)}));
  leaves("the entry for a folder that may not be listed", {}, "Permission denied", 0, registering,
         All({{full}, both(part)}));
  leaves("a place that is not read is the one before", {"RegnLocation=\\Parts|\\Other"},
         "a.dll\"\r\n", 2, registering, All({both(part), {full}, both(part)}));
  leaves("the entry of the special registration: the shortcuts are made",
         {"SpecialRegn=x.ocx||y.ocx", "Shotcut=\\a.exe,Desktop,A"}, "Subscript out of range", 0,
         {special.first, shortcuts.second},
         All({both(x), {full, shortcuts.first, denied, open, own + " created"}}));
  leaves("a special component that is not read is the one before", {"SpecialRegn=x.ocx|y.ocx"},
         "x.ocx\"\r\n", 1, special, All({both(x), {full}, both(x)}));
  leaves("the system's folder that is not known is the one before", {"SpecialRegn=x.ocx|y.ocx"},
         "x.ocx\"\r\n", 3, special, All({both(x), {full}, both("C:\\Windows\\system\\y.ocx")}));
  leaves("a shortcut that is not made is the one before, and is saved again",
         {"Shotcut=\\a.exe,Desktop,A"}, "can't created", 1, shortcuts,
         {denied, open, full, denied, own + " can't created", own + " created"});
  leaves("the shell that is not there is asked for its folders", {"Shotcut=\\a.exe,Desktop,A"},
         shortcuts.first, 3, shortcuts, {full, "//|Object variable not set|"});
  const auto said = leaves("a last word that is not read is the one before", {"FinalMsg=A|B|C"},
                           words.first, 5, words, {full, "Final Message write successfully"});
  EXPECT_EQ(said->Shown("LblFinalMsg"), "\rA\rA\rC");
}

TEST_F(DeployTest, DataSourcesAreTheMachines) {
  struct : OdbcInstaller {
    bool SQLConfigDataSource(int request, const std::string&, const std::string&) override {
      return request == 4;
    }
  } odbc;
  Wizard other(With(machine, odbc));
  EXPECT_TRUE(other.Page<FrmApplication>().CreateDSN("SQL Server", "DSN=Books"));
}

TEST_F(DeployTest, WithoutAnApplicationFolderTheLaterStepsStillRun) {
  Configure({"Shotcut=\\a.exe,Desktop,A", "AddOns=a.exe"});
  Install("OptClient");
  EXPECT_EQ(Between("DSN creation started...", "Installation finished."),
            (Texts{"DSN(s) created successfully", "Started Copying files...",
                   "Folder 'Aplication' Not found in the pack....", "Writing Settings not Finished",
                   "Execution of AddOn packs started...", "Execution of a.exe AddOn pack started",
                   "Process Finished, Exit Code -1", "Final Message started...",
                   "Final Message write successfully"}));
  EXPECT_TRUE(windows.Shown("CmdNext")->Enabled);
}

TEST_F(DeployTest, TheBarStartsByModeAndTakesTheCopysShare) {
  machine.Disk.MakeFolders("D:\\Pack\\Application");
  for (const auto& [mode, widths] : {std::pair{std::uint8_t{0}, Texts{"5860", "6592", "7325"}},
                                     std::pair{std::uint8_t{1}, Texts{"1465", "4395", "7325"}}}) {
    Wizard fresh(machine.Parts);
    const auto before = std::ssize(Given("ShpProgBar"));
    fresh.State.Mode = mode;
    fresh.State.AppFolderPath = "C:\\Progs";
    fresh.State.LogFileNumber = 1;
    windows.Run([&] { fresh.Page<FrmApplication>().Show(); });
    const Texts seen = Given("ShpProgBar");
    EXPECT_EQ(Texts(seen.begin() + before, seen.end()), widths) << int{mode};
  }
}

TEST_F(DeployTest, CopyGoesOnPastWhatItCannotCopy) {
  for (const char* file :
       {"a", "z", "Data.MDF", "log.ldf", "locked.txt", "Denied\\x.txt", "Sub\\y.txt"})
    Put(std::string("Application\\") + file, "new");
  machine.Disk.Find("D:\\Pack\\Application\\Denied")->Denied = true;
  machine.Disk.WriteFile(app + "\\locked.txt", "old");
  machine.Disk.Find(app + "\\locked.txt")->Writers = 1;
  machine.Disk.MakeFolders(app + "\\Sub");
  Install("OptClient");
  const std::string from = "D:\\Pack\\Application\\";
  const std::string copying = "//|Copying file - " + app + "\\";
  const auto tooShort = [&](const std::string& name) {
    return "//|Can't copy " + from + name + "to" + app + "\\" + name +
           "-Invalid procedure call or argument|";
  };
  EXPECT_EQ(Between("Started Copying files...", "File copying finished Successfully...."),
            (Texts{tooShort("a"), copying + from + "a", copying + from + "Data.MDF",
                   copying + from + "locked.txt", tooShort("z"), copying + from + "z",
                   "//|Creating New Folder - " + app + "\\Denied",
                   "//|Folder Already exists - " + app + "\\Sub",
                   copying + "Sub\\" + from + "Sub\\y.txt"}));
  EXPECT_EQ(Get(app + "\\locked.txt"), "old") << "a refusal of the shell is not looked at";
  EXPECT_EQ(Get(app + "\\Sub\\y.txt"), "new");
}

TEST_F(DeployTest, TheBarCreepsToItsLimitWhileCopying) {
  for (int i = 0; i < 30; ++i) Put("Application\\file" + std::to_string(i), "");
  Install("OptClient");
  const Texts widths = Given("ShpProgBar");
  // 30 files after 1465, then the copy's share and the end.
  EXPECT_EQ(Texts(widths.end() - 3, widths.end()), (Texts{"1495", "4425", "7325"}));

  wizard.Page<FrmApplication>().ShpProgBar.Width = 6695;
  CopyFolderFiles(wizard, wizard.Page<FrmApplication>().View, "D:\\Pack\\Application", app);
  EXPECT_EQ(Width(), 6700);

  EXPECT_TRUE(ShellCopy(wizard, "D:\\Pack\\Application\\file1", app + "\\x", false));
  EXPECT_FALSE(ShellCopy(wizard, "D:\\Pack\\none", app + "\\x", true));
  const Texts flags = machine.Journal.Texts("copy", "flags");
  EXPECT_EQ(Texts(flags.end() - 2, flags.end()), (Texts{"64", "6416"}));
}

TEST_F(DeployTest, DataSourcesOfOddLines) {
  Configure(
      {"SystemDSN=Other,Third,T,u,p||SQL Server,Second|"
       "Microsoft Access Driver (*.mdb),First,C:\\a.mdb,u,p|as many as are not blank"});
  Install("OptClient");
  Texts story = Story("log DSN creation");
  story.erase(std::ranges::find(story, "log DSN(s) created successfully"), story.end());
  EXPECT_EQ(Joined(story), R"(
log creating - Microsoft Access Driver (*.mdb),First,C:\a.mdb,u,p
dsn Microsoft Access Driver (*.mdb) DSN=First&DBQ=C:\a.mdb&UID=u&PWD=p
connect DSN=First; UID=u; PWD=p
ShpProgBar 1469
record SystemDSN:Microsoft Access Driver (*.mdb),First,C:\a.mdb,u,p
log creating - SQL Server,Second
log //|Subscript out of range
dsn SQL Server DSN=First&DBQ=C:\a.mdb&UID=u&PWD=p
log //|Subscript out of range
ShpProgBar 1473
record SystemDSN:SQL Server,Second
log creating -
log //|Subscript out of range
log //|Subscript out of range
log //|Subscript out of range
log //|Subscript out of range
ShpProgBar 1477
record SystemDSN:
log creating - Other,Third,T,u,p
dsn Other DSN=First&DBQ=C:\a.mdb&UID=u&PWD=p FAILED
log //|Operation is not allowed when the object is open.
ShpProgBar 1481
record SystemDSN:Other,Third,T,u,p
)");
}

TEST_F(DeployTest, StepsWithoutLinesShowAndLogNothingOfTheirOwn) {
  Put("Application\\a.txt", "");
  Install("OptClient");
  EXPECT_EQ(Given("Lblmsg").size(), 10U) << "no data source, shortcut, setting, add-on, last word";
  EXPECT_EQ(Between("Special Registration finished.", "Installation finished."),
            (Texts{"Writing Settings not Finished", "Final Message started...",
                   "Final Message write successfully"}));
}

TEST_F(DeployTest, AServerThatCannotBeReachedEndsTheProgram) {
  Configure({"SystemDSN=SQL Server,Books,BooksDB,sa,x"});
  Put("Application\\Desk.exe", "d");
  machine.Server.Reachable = false;
  Install("OptClient");
  EXPECT_TRUE(windows.Ended());
  const std::string message = "Connection to Server failed, Can not continue installation";
  Texts story = Story("connect ");
  ASSERT_FALSE(story.empty());
  EXPECT_TRUE(story.front().starts_with("log //|[Microsoft][ODBC SQL Server Driver]")) << story[0];
  story.erase(story.begin());
  EXPECT_EQ(story, (Texts{"msgbox " + message, "log " + message, "Lblmsg " + message, "end"}))
      << "a source that cannot be used is not recorded";
}

TEST_F(DeployTest, RegistrationWalksAndSurvives) {
  Configure({"RegnLocation=\\Missing|\\Parts"});
  for (const char* file : {"a.dll.bak", "b.Ocx.dll", "Deep\\c.dll"})
    Put(std::string("Application\\Parts\\") + file, "");
  NoteEvents();
  Install("OptClient");
  const auto command = [&](const char* file) {
    return "regsvr32 /s \"" + app + "\\Parts\\" + file + "\"";
  };
  Texts expected;
  for (const char* file : {"a.dll.bak", "b.Ocx.dll", "b.Ocx.dll", "Deep\\c.dll"})
    expected.insert(expected.end(), {command(file) + " /U", command(file)});
  EXPECT_EQ(Registered(), expected) << "what holds both is taken twice";
  EXPECT_EQ(Between("File Registration started...", "All Files registered successfully").front(),
            "//|Path not found|");
  Texts story = Story("log File Registration started");
  story.erase(std::ranges::find(story, "log All Files registered successfully"), story.end());
  EXPECT_EQ(std::ranges::count(story, "events"), 3) << "once before each file";
}

TEST_F(DeployTest, ManyRegistrationsStepTheBarBack) {
  Configure({"RegnLocation=\\Parts"});
  for (int i = 0; i < 750; ++i) Put("Application\\Parts\\" + std::to_string(1000 + i) + ".dll", "");
  Install("OptClient");
  const Texts widths = Given("ShpProgBar");
  const auto limit = std::ranges::find(widths, std::to_string(7325 - 4));
  ASSERT_NE(limit, widths.end());
  EXPECT_EQ(*(limit + 1), std::to_string(7325 - 4 - 500));
}

TEST_F(DeployTest, AShortcutThatCannotBeMadeTriesTheNextFolderOfItsName) {
  Configure({"Shotcut=\\a.exe,Desktop,A|\\a.exe,Nowhere,A|a.exe,Desktop|b.exe, DESKTOP ,B"});
  machine.Disk.MakeFolders("D:\\Pack\\Application");
  machine.Disk.Find("C:\\Users\\Public\\Desktop")->Denied = true;
  Install("OptClient");
  const std::string denied = "//|Path/File access error|";
  const std::string link = "Shotcut:C:\\Users\\";
  EXPECT_EQ(Between("Creating Shotcuts...", "Writing Settings not Finished"),
            (Texts{denied, link + "Public\\Desktop\\A.lnk can't created",
                   link + "Operator\\Desktop\\A.lnk created", "//|Subscript out of range|", denied,
                   link + "Public\\Desktop\\B.lnk can't created",
                   link + "Operator\\Desktop\\B.lnk created"}));
  EXPECT_EQ(Records().back(), link + "Operator\\Desktop\\B.lnk");
  EXPECT_EQ(machine.Journal.Texts("shortcut", "target").back(), "C:\\Progs\\TA-LU\\Appb.exe");
}

TEST_F(DeployTest, SettingsFilesOfOddLines) {
  Configure(
      {"WriteSettings=\\a.TXT,x,SERVER|\\Same.txt,first,SERVER|\\Same.txt, key = , password |"
       "\\Plain.txt,alone,other|\\Short.txt,x|\\Late.txt,x,SERVER",
       "AddOns=a.exe"});
  wizard.State.SqlPassword = "secret";
  Install("OptClient");
  EXPECT_EQ(Get(app + "\\a.TXT"), "(none)");
  EXPECT_EQ(Get(app + "\\Same.txt"), " key = secret|");
  EXPECT_EQ(Get(app + "\\Plain.txt"), "alone|");
  EXPECT_EQ(Get(app + "\\Late.txt"), "(none)") << "the step ends at the short line";
  EXPECT_EQ(Between("Writing Settings started...", "Execution of AddOn packs started..."),
            Texts{"//|Subscript out of range|"});
  Configure({"WriteSettings=\\Plain.txt,new,SERVER"});
  machine.Disk.Find(app + "\\Plain.txt")->ReadOnly = true;
  EXPECT_THROW(wizard.Page<FrmApplication>().WriteSettings(), RuntimeError);
  EXPECT_EQ(Get(app + "\\Plain.txt"), "alone|");
}

TEST_F(DeployTest, AnErrorInTheAddOnsEndsThatStepOnly) {
  Configure({"AddOns=a.exe.msi|b.exe", "FinalMsg=Done"});
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
