#include "HostileRecords.h"
#include "MachineState.h"
#include "Pack.h"
#include "takeback/Commands.h"

namespace talu {
namespace {

using Things = std::set<std::string>;

const std::string kDesktop = "C:\\Users\\Public\\Desktop\\";
const std::string kStartMenu = "C:\\ProgramData\\Microsoft\\Windows\\Start Menu";

/// A machine on which a pack was installed that has something for every step.
struct Installed : PackTest {
  explicit Installed(bool baits = false) {
    Configure({"SystemDSN=SQL Server,Sales,Sales,Seller,x",
               "Shotcut=\\Desk.exe,Desktop,Desk|\\Desk.exe,StartMenu,Desk|\\Desk.exe,StartMenu,Two",
               "RegnLocation=\\Parts", "SpecialRegn=link.ocx",
               "WriteSettings=\\s.txt,S=,SERVER|\\Help\\p.txt,P=,PASSWORD", "AddOns=a.exe|b.msi",
               "FreshDBSript=a.sql", "DBSript=Sales"});
    Put("SQLScript\\Fresh\\a.sql",
        Lines("--taluGO|CREATE DATABASE Sales ON (FILENAME='C:\\Old\\Sales.mdf')|GO|"
              "CREATE LOGIN Seller WITH PASSWORD='x'|GO"));
    for (const char* file : {"Application\\Desk.exe", "Application\\Help\\read.txt",
                             "Application\\Parts\\grid.ocx", "Application\\Uninstall.exe",
                             "SpecialRegn\\link.ocx", "AddOns\\a.exe", "AddOns\\b.msi"}) {
      Put(file, file);
    }
    machine.Disk.MakeFolders("C:\\Progs");
    if (baits) PutBaits();
    before = MachineState::Of(machine);
    PackTest::Install("OptServer");
    EndWizard();
    now = MachineState::Of(machine);
  }
  void TestBody() override {}

  /// What a record may lead to and an installation never made.
  void PutBaits() {
    const std::string inApp = app + "\\Desk.exe";
    for (const auto& [path, bytes] :
         std::map<std::string, std::string>{{kDesktop + "Other.lnk", "C:\\Other\\other.exe"},
                                            {kDesktop + "Near.lnk", app + "2\\Desk.exe"},
                                            {kDesktop + "Plain.lnk", "plain"},
                                            {kDesktop + "notes.txt", inApp},
                                            {"C:\\Data\\Desk.lnk", inApp},
                                            {"C:\\Data\\evil.dll", ""},
                                            {"C:\\Data\\keep.txt", ""},
                                            {"D:\\Data\\evil.msi", ""},
                                            {"C:\\Progs\\TA-LU\\App2\\keep.txt", ""},
                                            {"C:\\Windows\\system\\shell.dll", ""},
                                            {kStartMenu + "\\Programs\\Sub\\Desk.lnk", inApp},
                                            {kStartMenu + "\\TALU\\Other\\x.lnk", inApp},
                                            {kStartMenu + "\\TALU\\Linked\\far.lnk", inApp}}) {
      machine.Disk.WriteFile(path, bytes);
    }
    machine.Disk.Find(kStartMenu + "\\TALU\\Linked")->IsLink = true;
    machine.Disk.MakeFolders("C:\\Empty");
    machine.Odbc.SQLConfigDataSource(
        4, "SQL Server",
        Replace("DSN=Other|SERVER=SRV2|DATABASE=OtherDB", "|", std::string(1, '\0')));
    machine.Server.Databases = {"PAY", "PAYROLL", "PAY ROLL", "PAY'ROLL"};
    machine.Server.Logins = {"BOSS", "X"};
  }

  void EndWizard() {
    wizard.TextFiles.Close(wizard.State.LogFileNumber);
    wizard.TextFiles.Close(wizard.State.UninstallFileNumber);
  }

  /// Returns the exit code; the lines are in `told`.
  int Command(const Texts& arguments) {
    told.clear();
    Machine parts = machine.Parts;
    parts.AppPath = app;
    const auto take = [this](std::string_view line) { told.emplace_back(line); };
    const auto environment = [](const std::string& name) {
      return name == "KEY" ? std::optional<std::string>("new") : std::nullopt;
    };
    const CommandLineHost host = {.Out = take, .Error = take, .Environment = environment};
    return TakeBackCommand(arguments, parts, machine.Removal, "Uninstall.exe", host);
  }
  int Run() { return Command({"run", "--drop-databases", "--pack", "D:\\Pack"}); }

  bool IsTold(const std::string& text) const {
    return std::ranges::any_of(told, [&](const std::string& line) { return Contains(line, text); });
  }
  std::string File(const std::string& name) {
    return machine.Disk.ReadFile(app + "\\" + name).value_or("");
  }
  void PutFile(const std::string& name, const std::string& bytes) {
    machine.Disk.WriteFile(app + "\\" + name, bytes);
  }
  /// What is not as it was before the installation.
  Things Rest() { return MachineState::Differences(before, MachineState::Of(machine)); }

  MachineState before;
  MachineState now;
  Texts told;
};

TEST(TakeBackTest, LeavesTheMachineAsItWasAndTellsSoBefore) {
  Installed run;
  EXPECT_EQ(run.Command({"plan", "--drop-databases", "--pack", "D:\\Pack"}), 0);
  EXPECT_EQ(Joined(run.told), R"(
goes   add-on           b.msi
stays  add-on           a.exe - It was a program of its own: it is removed by its own means.
goes   shortcut         C:\ProgramData\Microsoft\Windows\Start Menu\TALU\App\Two.lnk
goes   shortcut         C:\ProgramData\Microsoft\Windows\Start Menu\TALU\App\Desk.lnk
goes   shortcut         C:\Users\Public\Desktop\Desk.lnk
goes   shortcut folder  C:\ProgramData\Microsoft\Windows\Start Menu\TALU\App
goes   system component C:\Windows\system\link.ocx
goes   component        C:\Progs\TA-LU\App\Parts\grid.ocx
goes   settings file    C:\Progs\TA-LU\App\Help\p.txt
goes   settings file    C:\Progs\TA-LU\App\s.txt
goes   file             C:\Progs\TA-LU\App\Parts\grid.ocx
goes   file             C:\Progs\TA-LU\App\Help\read.txt
goes   file             C:\Progs\TA-LU\App\Desk.exe
goes   data source      Sales
goes   database         Sales - After a backup.
goes   login            Seller
goes   folder           C:\Progs\TA-LU\App\Parts
goes   folder           C:\Progs\TA-LU\App\Help
goes   folder           C:\Progs\TA-LU\App\Data
goes   backups          C:\Progs\TA-LU\App BackUp
goes   program          C:\Progs\TA-LU\App
goes: 20, stays: 1, left: 0
)");
  EXPECT_EQ(MachineState::Differences(run.now, MachineState::Of(run.machine)), Things());
  EXPECT_EQ(run.Run(), 0);
  EXPECT_EQ(run.told.back(), "gone: 20, stays: 1, left: 0");
  EXPECT_EQ(run.Rest(), Things());
  EXPECT_EQ(run.Run(), 2);
}

TEST(TakeBackTest, DropsADatabaseAfterABackupThatTheServerFindsWhole) {
  Installed run;
  const std::size_t before = run.Statements().size();
  EXPECT_EQ(run.Command({"run", "--drop-databases", "--login", "boss", "--password-from", "KEY"}),
            0);
  const Texts all = run.Statements();
  const std::string guard = "IF EXISTS (SELECT name FROM sys.databases WHERE name = N'Sales') ";
  const std::string file = "N'C:\\Progs\\TA-LU\\App BackUp\\Talu_Sales_7_3_2012_9_5_last.bkp'";
  EXPECT_EQ(
      Texts(all.begin() + static_cast<std::ptrdiff_t>(before), all.end()),
      Texts({"USE Master", guard + "ALTER DATABASE [Sales] SET READ_ONLY WITH ROLLBACK IMMEDIATE",
             guard + "BACKUP DATABASE [Sales] TO DISK = " + file +
                 " WITH NOFORMAT, INIT, NAME = N'Sales-Full Database Backup', SKIP, "
                 "NOREWIND, NOUNLOAD",
             guard + "RESTORE VERIFYONLY FROM DISK = " + file,
             guard + "ALTER DATABASE [Sales] SET SINGLE_USER WITH ROLLBACK IMMEDIATE",
             guard + "DROP DATABASE [Sales]", "USE Master",
             "IF EXISTS (SELECT name FROM sys.server_principals WHERE name = N'Seller') "
             "DROP LOGIN [Seller]"}));
  EXPECT_EQ(run.machine.Journal.Texts("connect", "text").back(),
            "driver={SQL Server};server=SRV1;uid=boss;pwd=new;database=Master");
  // The recorded password is the recorded login's.
  for (const auto& [login, password] : {std::pair("boss", ""), {"sa", "secret"}}) {
    Installed other;
    EXPECT_EQ(other.Command({"run", "--drop-databases", "--login", login, "--server", "S2"}), 0);
    EXPECT_EQ(other.machine.Journal.Texts("connect", "text").back(),
              std::string("driver={SQL Server};server=S2;uid=") + login + ";pwd=" + password +
                  ";database=Master");
  }
}

TEST(TakeBackTest, ADatabaseIsOfItsServerAndItsBackupInTheFolderOfBackups) {
  Installed run;
  const std::string once = run.File("Uninstall.dat");
  run.PutFile("Uninstall.dat",
              Replace(Replace(once, "SRV1", "SRV\\2"), "1, Sales", "1, [Pay:/roll]") + once +
                  Replace(once, "SRV1", "SRV\\2") + once);
  EXPECT_EQ(run.Run(), 0);
  Texts servers;
  for (const std::string& text : run.machine.Journal.Texts("connect", "text"))
    servers.push_back(Split(text, ';').at(1));
  Texts files;
  for (const std::string& statement : run.Statements()) {
    if (Contains(statement, "RESTORE")) files.push_back(Split(statement, '\'').at(3));
  }
  const std::string folder = "C:\\Progs\\TA-LU\\App BackUp\\Talu_";
  EXPECT_EQ(Joined(files), Joined({folder + "Sales_7_3_2012_9_5_last.bkp",
                                   folder + "Sales@SRV%5C2_7_3_2012_9_5_last.bkp",
                                   folder + "Pay%3A%2Froll@SRV%5C2_7_3_2012_9_5_last.bkp"}));
  EXPECT_EQ(std::ranges::count(servers, "server=SRV\\2"), 2) << Joined(servers);
}

TEST(TakeBackTest, AnInstallationThatComesBetweenKeepsItsRecord) {
  Installed run;
  run.machine.Journal.OnRequest = [&](int, const char* request) {
    if (std::string(request) != "rmdsn") return;
    run.PutFile("Uninstall.dat", run.File("Uninstall.dat") + "Server:SRV2\r\n\r\n");
  };
  EXPECT_EQ(run.Run(), 1);
  EXPECT_TRUE(run.IsTold("The record was changed while this was at work."));
  EXPECT_TRUE(run.File("Uninstall.dat").ends_with("Server:SRV2\r\n\r\n"));
}

TEST(TakeBackTest, WhatTheServerRefusesStaysRecordedAndAllElseIsDone) {
  struct Trouble {
    const char* Statement;  ///< that fails; empty: the server cannot be reached
    bool DatabaseStays;
  };
  for (const auto& [statement, databaseStays] : {Trouble{"", true},
                                                 {"BACKUP DATABASE [Sales]", true},
                                                 {"RESTORE VERIFYONLY", true},
                                                 {"DROP DATABASE [Sales]", true},
                                                 {"DROP LOGIN [Seller]", false}}) {
    SCOPED_TRACE(statement);
    Installed run;
    SimulatedServer& server = run.machine.Server;
    server.Reachable = *statement != '\0';
    if (server.Reachable) server.FailStatements(statement, StatementError("No."));
    EXPECT_EQ(run.Run(), 1);
    EXPECT_EQ(server.Databases.contains("SALES"), databaseStays);
    // Whoever uses it can go on.
    if (server.Reachable && databaseStays) {
      EXPECT_TRUE(run.Statements().back().ends_with("SET READ_WRITE WITH ROLLBACK IMMEDIATE"));
    }
    EXPECT_TRUE(server.Logins.contains("SELLER"));
    const std::string left = run.File("Uninstall.dat");
    EXPECT_EQ(Contains(left, "DBNames:1, Sales"), databaseStays);
    EXPECT_TRUE(Contains(left, "DBLogins:1, Seller") && Contains(left, "PsWord:secret"));
    EXPECT_FALSE(Contains(left, "Shotcut") || Contains(left, "SystemDSN"));
    EXPECT_EQ(run.File("Desk.exe"), "");
    EXPECT_NE(run.File("Uninstall.exe"), "");
    server.Reachable = true;
    server.Mend();
    EXPECT_EQ(run.Run(), 0);
    EXPECT_EQ(run.Rest(), Things());
  }
}

TEST(TakeBackTest, WhatStaysByChoiceCanGoAsLongAsThereIsARecord) {
  Installed run;
  run.machine.Disk.Find(run.app + "\\Desk.exe")->Denied = true;
  EXPECT_EQ(run.Command({"run"}), 1);
  run.machine.Disk.Find(run.app + "\\Desk.exe")->Denied = false;
  EXPECT_EQ(run.Run(), 0);
  EXPECT_EQ(run.Rest(), Things());
  EXPECT_TRUE(run.IsTold("b.msi"));
}

TEST(TakeBackTest, WhatWasChangedOrAddedStaysAndIsListed) {
  struct Case {
    const char* Path;   ///< below the application folder, or a whole path
    const char* Bytes;  ///< nothing: it becomes a link
    const char* Told;
    bool PackAtHand = true;
  };
  for (const Case& one : std::vector<Case>{
           {"s.txt", "S=other\r\n", "It is not as the wizard wrote it."},
           {"Desk.exe", "mine", "It is not the pack's file."},
           {"Help\\read.txt", "mine", "It was written to after the installation.", false},
           {"Help\\read.txt", nullptr, "It is a link, which is not followed."},
           {"Help", nullptr, "It is a link, which is not followed."},
           {"own.txt", "mine", "The last installation did not put it there."},
           {"Own\\deep\\x.txt", "mine", "App\\Own - The last installation did not put it there."},
           {"Data\\Sales.mdf", "data", "It is in the databases' folder."},
           {"C:\\Progs\\TA-LU\\App BackUp\\x.bkp", "backup", "Backups stay."},
           {"C:\\Windows\\system\\link.ocx", "newer", "It is not the pack's file."},
           {"C:\\Users\\Public\\Desktop\\Desk.lnk", "C:\\Other\\x.exe",
            "It leads to C:\\Other\\x.exe."},
           {"C:\\ProgramData\\Microsoft\\Windows\\Start Menu\\TALU\\App\\mine.lnk", "C:\\x.exe",
            "TALU\\App - It is not empty."}}) {
    SCOPED_TRACE(std::string(one.Path) + ", " + one.Told);
    Installed run;
    SimulatedDisk& disk = run.machine.Disk;
    const std::string path = Contains(one.Path, ":") ? one.Path : run.app + "\\" + one.Path;
    if (one.Bytes != nullptr) disk.WriteFile(path, one.Bytes);
    if (one.Bytes == nullptr) disk.Find(path)->IsLink = true;
    if (!one.PackAtHand) disk.Find("D:\\Pack\\Application")->Children.clear();
    EXPECT_EQ(one.PackAtHand ? run.Run() : run.Command({"run", "--drop-databases"}), 0);
    EXPECT_TRUE(run.IsTold(one.Told)) << Joined(run.told);
    EXPECT_NE(disk.Find(path), nullptr);
    // The other files and the record are gone.
    EXPECT_EQ(run.File("Parts\\grid.ocx") + run.File("Uninstall.dat"), "");
  }
}

TEST(TakeBackTest, JudgesFilesByTheInstallationsTime) {
  Installed run;
  // The pack is a newer one by now: what it says of a file is of no use.
  run.Put("Application\\Desk.exe", "version 2");
  run.PutFile("Help\\read.txt", "mine");
  run.Put("Application\\Help\\read.txt", "version 2");
  // Somebody has looked at the log and stored it.
  run.PutFile("Ta-luErrLog.txt", run.File("Ta-luErrLog.txt"));
  EXPECT_EQ(run.Run(), 0);
  EXPECT_EQ(run.File("Desk.exe") + run.File("Help\\read.txt"), "mine") << Joined(run.told);
}

TEST(TakeBackTest, WhatIsInUseIsLeftForTheNextRun) {
  for (const char* name : {"Desk.exe", "Parts\\grid.ocx", "Help", "s.txt", "Ta-luErrLog.txt",
                           "Uninstall.exe", "Uninstall.dat", "C:\\Windows\\system\\link.ocx"}) {
    SCOPED_TRACE(name);
    Installed run;
    const std::string path = Contains(name, ":") ? name : run.app + "\\" + name;
    // The record can be read: an editor has it open.
    const bool record = path.ends_with(".dat");
    run.machine.Disk.Find(path)->Denied = !record;
    run.machine.Disk.Find(path)->Writers = record ? 1 : 0;
    EXPECT_NE(run.Run(), 0);
    ASSERT_NE(run.machine.Disk.Find(path), nullptr);
    EXPECT_NE(run.File("Uninstall.exe"), "");
    run.machine.Disk.Find(path)->Denied = false;
    run.machine.Disk.Find(path)->Writers = 0;
    EXPECT_EQ(run.Run(), 0) << Joined(run.told);
    EXPECT_EQ(run.Rest(), Things());
  }
}

TEST(TakeBackTest, ToolsThatFailAreTold) {
  struct Case {
    const char* Arguments;
    std::int32_t Code;
    int Result;
    const char* Told;
  };
  for (const auto& [arguments, code, result, text] :
       {Case{"grid.ocx", 4, 0, "regsvr32 ended with 4."},
        {"grid.ocx", -1, 1, "regsvr32 ended with -1."},
        {"link.ocx", -1, 1, "regsvr32 ended with -1."},
        {"b.msi", 3010, 0, "Windows wants a restart."},
        {"b.msi", 1605, 0, "b.msi"},
        {"b.msi", 1618, 1, "msiexec ended with 1618."}}) {
    SCOPED_TRACE(std::string(arguments) + " " + std::to_string(code));
    Installed run;
    run.machine.Removal.ExitCodes[arguments] = code;
    EXPECT_EQ(run.Run(), result);
    EXPECT_TRUE(run.IsTold(text)) << Joined(run.told);
    run.machine.Removal.ExitCodes.clear();
    EXPECT_EQ(run.Run(), result == 1 ? 0 : 2);
  }
}

TEST(TakeBackTest, ReadsRecordsOfSeveralInstallationsAndWithAnyLineEnds) {
  for (const char* end : {"\r\n", "\r", "\n", "\n\n", "\r\n\r\n\r\n"}) {
    Installed run;
    const std::string once = run.File("Uninstall.dat");
    run.PutFile("Uninstall.dat", Replace(Replace(once + once, "\r\n\r\n", "\n"), "\n", end));
    EXPECT_EQ(run.Run(), 0) << Joined(run.told);
    EXPECT_EQ(run.Rest(), Things());
  }
}

TEST(TakeBackTest, NoRecordMakesItTouchAnythingElse) {
  for (const HostileRecord& one : kHostileRecords) {
    SCOPED_TRACE(one.Name);
    Installed run(true);
    const char* file = one.In == kRecord ? "Uninstall.dat" : "Ta-luErrLog.txt";
    std::string text = Replace(Replace(one.Text, "$A", run.app), "$S", kStartMenu);
    text = Replace(text, "|", "\r\n");
    run.PutFile(file, text.starts_with('=') ? text.substr(1) : run.File(file) + text);
    run.PutFile("own.txt", "mine");
    run.PutFile("Link\\far.txt", "far");
    run.machine.Disk.Find(run.app + "\\Link")->IsLink = true;
    const Things made = MachineState::Differences(run.before, run.now);
    const MachineState start = MachineState::Of(run.machine);
    run.Run();
    for (const std::string& thing :
         MachineState::Differences(start, MachineState::Of(run.machine))) {
      EXPECT_TRUE(made.contains(thing)) << thing << Joined(run.told);
    }
    EXPECT_TRUE(run.IsTold(one.Told)) << Joined(run.told);
    EXPECT_FALSE(run.IsTold("secret"));
    EXPECT_EQ(run.File("own.txt") + run.File("Link\\far.txt"), "minefar");
    for (const std::string& command : run.machine.Journal.Texts("run", "command")) {
      EXPECT_FALSE(Contains(command, "own.txt") || Contains(command, "evil")) << command;
    }
  }
}

TEST(TakeBackTest, ReadsTheLogFromTheInstallationsStart) {
  Installed run;
  // A backup of the folder, in the folder itself where its path was typed with a "\\" behind it.
  const std::string backup = run.app + "\\App BackUp\\AppFolderBkp_7_3_2012_9_5";
  run.PutFile("App BackUp\\AppFolderBkp_7_3_2012_9_5\\own.txt", "mine");
  run.PutFile("Ta-luErrLog.txt",
              Lines("//|//|Copying file - " + backup + "\\" + run.app + "\\own.txt|") +
                  // A pack in the root of a drive.
                  Replace(run.File("Ta-luErrLog.txt"), "D:\\Pack\\", "E:\\"));
  run.machine.Disk.WriteFile("E:\\AppCfg.txt",
                             run.machine.Disk.ReadFile("D:\\Pack\\AppCfg.txt").value());
  EXPECT_EQ(run.Command({"run"}), 0);
  EXPECT_EQ(run.machine.Disk.ReadFile(backup + "\\own.txt"), "mine");
  EXPECT_TRUE(run.IsTold("App BackUp - The last installation did not put it there."));
  EXPECT_EQ(run.File("s.txt"), "") << Joined(run.told);
}

TEST(TakeBackTest, KeepsALongRecordThatNobodyUnderstands) {
  Installed run;
  std::string lines;
  while (lines.size() < 10'000'000) lines += std::string(98, 'x') + "\r\n";
  run.PutFile("Uninstall.dat", run.File("Uninstall.dat") + lines);
  EXPECT_EQ(run.Run(), 1);
  EXPECT_TRUE(run.IsTold(" to 100")) << run.told.back();
  // Of the wizard's own lines those stay that say where the others belong, and what has not gone.
  const std::string left = run.File("Uninstall.dat");
  EXPECT_TRUE(left.starts_with("AppFolder:" + run.app + "\r\n\r\nDBFolder:"));
  EXPECT_EQ(left.find("xxx"), left.find("PsWord:secret\r\n\r\nAddOns:a.exe") + 33);
  EXPECT_EQ(std::ranges::count(left.substr(left.find("xxx")), 'x'), std::ranges::count(lines, 'x'));
}

TEST(TakeBackTest, TheCommandLineSaysWhatItWants) {
  for (const Texts& arguments : std::vector<Texts>{{},
                                                   {"remove"},
                                                   {"run", "--all"},
                                                   {"run", "--server"},
                                                   {"plan", "--login", ""},
                                                   {"run", "--password-from", "NOWHERE"},
                                                   {"run", "--pack", "Pack"},
                                                   {"run", "--pack", "C:\\Progs"}}) {
    Installed run;
    EXPECT_EQ(run.Command(arguments), 2);
    EXPECT_EQ(run.told.size(), 1U);
    EXPECT_EQ(MachineState::Differences(run.now, MachineState::Of(run.machine)), Things());
  }
  Installed run;
  EXPECT_EQ(run.Command({"run", "--json"}), 0);
  EXPECT_TRUE(run.IsTold(R"({"step":"database","name":"Sales","fate":"stays","why":)"));
  EXPECT_EQ(run.told.back(), R"({"result":"done","gone":16,"stays":5,"left":0})");
}

}  // namespace
}  // namespace talu
