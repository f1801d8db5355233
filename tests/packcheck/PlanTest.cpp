#include <algorithm>
#include <sstream>

#include "PackFolder.h"
#include "Plan.h"
#include "PlanAccount.h"
#include "PlanCommand.h"

namespace talu::packcheck {
namespace {

using Texts = std::vector<std::string>;

/// A small pack with a script for each type, and what a plan of it says.
class PlanTest : public testing::Test {
 protected:
  PlanTest() {
    Configure("FreshDBSript f.sql DemoDBSript d.sql UpgradeDBSript u.sql");
    pack.Put("SQLScript/Fresh/f.sql",
             "--taluGO\r\n\r\nCREATE DATABASE Sales ON (FILENAME='C:\\Old\\S.mdf')\r\nGO\r\n"
             "CREATE LOGIN Clerk WITH PASSWORD = N'it''s secret'\r\n\r\nGO\r\nSELECT 1\r\nGO\r\n");
    pack.Put("SQLScript/Demo/d.sql", "--taluLineByLine\r\n\r\nSELECT 2\r\n");
    pack.Put("SQLScript/Upgrade/u.sql", "--taluGO\r\nUSE Sales\r\nGO\r\n");
    pack.Put("Application/Help.txt", "help");
    options.Pack = pack.Path;
  }

  /// Key and value alternate in `lists`.
  void Configure(const std::string& lists, const std::string& more = "") {
    std::string text = Block("AppTitle", "Sales Desk\r\n") + Block("AppFolder", "App\r\n") +
                       Block("DBFolder", "Data\r\n");
    std::istringstream words(lists);
    for (std::string key, value; words >> key >> value;) text += Block(key, value + "\r\n");
    pack.Put("AppCfg.txt", text + more);
  }

  std::unique_ptr<PlannedRun> Run() { return Plan(options); }
  Texts Pages() { return Run()->Machine.Journal.Texts("show", "form"); }
  Texts Statements() { return Run()->Machine.Journal.Texts("sql", "text"); }
  std::string Tell(int status, bool json = false) {
    std::ostringstream out;
    EXPECT_EQ(PlanCommand({.Run = options, .Json = json, .Save = save, .Compare = compare}, out),
              status);
    return out.str();
  }

  HostFolder pack;
  PlanOptions options;
  std::filesystem::path save;
  std::filesystem::path compare;
};

TEST_F(PlanTest, GoesTheWayOfTypeAndMode) {
  struct Case {
    InstallType Type;
    InstallMode Mode;
    Texts Sent;
  };
  const std::string moved =
      "\r\nCREATE DATABASE Sales ON (FILENAME='C:\\Program Files\\TA-LU\\App"
      "\\Data\\S.mdf')";
  const std::string login = "\r\nCREATE LOGIN Clerk WITH PASSWORD = N'it''s secret'";
  const Case cases[] = {
      {InstallType::Fresh, InstallMode::Server, {moved, login, "\r\nSELECT 1"}},
      {InstallType::Demo, InstallMode::Server, {"SELECT 2"}},
      {InstallType::Upgrade, InstallMode::Server, {"\r\nUSE Sales"}},
      {InstallType::Upgrade, InstallMode::Client, {}},
  };
  for (const Case& test : cases) {
    options.Type = test.Type;
    options.Mode = test.Mode;
    options.Databases.assign(test.Type == InstallType::Upgrade ? 1 : 0, "sales");
    const auto run = Run();
    const Journal& journal = run->Machine.Journal;
    EXPECT_EQ(run->Stop(), "");
    EXPECT_EQ(journal.Texts("sql", "text"), test.Sent);
    EXPECT_EQ(journal.Events().back().Kind, "end");
    EXPECT_EQ(journal.Texts("show", "form").size(), test.Sent.empty() ? 4U : 6U);
    EXPECT_EQ(run->Wizard.State.SetupType, static_cast<int>(test.Type));
  }
}

TEST_F(PlanTest, StopsWhereThePersonWould) {
  options.Type = InstallType::Upgrade;
  EXPECT_EQ(Run()->Stop(),
            "FrmSQLNonQuery stays, its Next disabled: Database creation not "
            "finished...");
  options.Databases = {"Sales"};
  options.Password = " ";
  EXPECT_EQ(Run()->Stop(), "FrmAuthentication stays, its Next disabled");
  options.Password = "x";
  options.PackPath = "D:\\Elsewhere";
  options.FailRequest = 1;
  options.FailRequestError = error::kFileNotFound;
  EXPECT_EQ(Run()->Stop(), "the program ended by itself");
  options.FailRequest = 0;
  Configure("DemoDBSript d.sql");
  EXPECT_EQ(Run()->Stop(), "the upgrade installation cannot be chosen: its option is disabled");
  Configure("");
  EXPECT_EQ(Run()->Stop(), "") << "without any script Next goes on";
  std::filesystem::remove(pack.Path / "AppCfg.txt");
  EXPECT_EQ(Run()->Machine.Journal.Texts("msgbox", "text"),
            Texts{"Run-time error '53':\r\n\r\nFile not found"});
}

TEST_F(PlanTest, TwiceGoesBackFromEveryPageThatAllowsIt) {
  options.Mode = InstallMode::Client;
  options.Twice = true;
  EXPECT_EQ(Pages(), (Texts{"FrmType", "FrmMode", "FrmType", "FrmMode", "FrmLocation", "FrmMode",
                            "FrmLocation", "FrmApplication"}));
  options.Mode = InstallMode::Server;
  EXPECT_EQ(Run()->Stop(), "");
}

TEST_F(PlanTest, OldFolderIsTickedAndBackedUpAndItsDiskMayBeOfAnEarlierRun) {
  HostFolder saved;
  save = saved.Path / "first";
  options.InstallPath = "C:\\Progs";
  Tell(0);
  EXPECT_FALSE(std::filesystem::exists(save / "D" / "Pack"));
  options.Disk = save / "C";
  options.Type = InstallType::Upgrade;
  options.Databases = {"Sales"};
  options.InstallPath = "";
  options.OldPath = "C:\\Progs\\TA-LU\\App";
  save = saved.Path / "second";
  Tell(0);
  const std::string app = "second/C/Progs/TA-LU/App/";
  EXPECT_EQ(saved.Get(app + "Help.txt"), "help");
  EXPECT_EQ(saved.Get("second/C/Progs/TA-LU/App BackUp/AppFolderBkp_7_3_2012_9_5/Help.txt"),
            "help");
  EXPECT_NE(saved.Get(app + "Uninstall.dat").find("DBNames:1, Sales"), std::string::npos);
  EXPECT_THROW(Tell(0), std::runtime_error) << "what was saved is not overwritten";
}

TEST_F(PlanTest, TellsWhatAMachineHasOtherwise) {
  Configure("FreshDBSript f.sql WriteSettings \\c.txt,Pw=,password",
            Block("Shotcut", "\\Help.txt,Desktop,Help\r\n"));
  pack.Put("Application/Sub/Picture.bin", std::string("\0\1", 2));
  pack.Put("Application/First.bkp", "the pack's");
  options.InstallPath = "C:\\In\\Here";
  options.Password = "secret";
  HostFolder machine;
  save = machine.Path / "saved";
  Tell(0);
  save.clear();
  compare = machine.Path / "saved" / "C";
  const std::string app = "saved/C/In/Here/TA-LU/App/";
  machine.Put(app + "Data/Sales.mdf", "the server's");
  machine.Put(app + "First.bkp", "the server's");
  EXPECT_EQ(Tell(0), "11 files and folders and 1 shortcuts are as planned\n");

  machine.Put(app + "More.txt", "");
  machine.Put(app + "Sub/Picture.bin", std::string("\0\2", 2));
  machine.Put(app + "c.txt", "Pw=secreT\r\n");
  std::string log = machine.Get(app + "Ta-luErrLog.txt");
  log.replace(log.find("Started"), 7, "Planned");
  machine.Put(app + "Ta-luErrLog.txt", log);
  for (const char* gone : {"In/Here/TA-LU/App/First.bkp", "In/Here/TA-LU/App/Help.txt",
                           "Users/Public/Desktop/Help.lnk"}) {
    std::filesystem::remove(compare / gone);
  }
  const std::string below = "C:\\In\\Here\\TA-LU\\App\\";
  EXPECT_EQ(
      Tell(1),
      below + "c.txt differs in line 1, which has a password\n" + below + "First.bkp is missing\n" +
          below + "Help.txt is missing\n" + below + "Sub\\Picture.bin differs\n" + below +
          "Ta-luErrLog.txt differs in line 2: \"Installation Started...\" is planned, "
          "\"Installation Planned...\" there\n" +
          below + "More.txt is not planned\nC:\\Users\\Public\\Desktop\\Help.lnk is missing\n");
}

TEST_F(PlanTest, TellsItToAPerson) {
  Configure("FreshDBSript f.sql WriteSettings \\c.txt,Pw=,password AddOns a.exe FinalMsg Bye",
            Block("SystemDSN", "SQL Server,Books,Sales,Clerk,secret, secret too\r\n"));
  pack.Put("AddOns/A.EXE", "");
  options.ExitCodes["a.exe"] = 3;
  options.FailSql = {{"SELECT", StatementError("No table.")}};
  const auto expect = [](const std::string& account, std::initializer_list<const char*> parts) {
    for (const char* part : parts)
      EXPECT_NE(account.find(part), std::string::npos) << part << "\n" << account;
    EXPECT_EQ(account.find("secret"), std::string::npos) << account;
  };
  expect(Tell(1),
         {"A fresh installation in server mode from D:\\Pack, on 2012-03-07",
          "\n  statement 2, f.sql line 5\n      CREATE LOGIN Clerk WITH PASSWORD = '***'\n",
          "  statement 3, f.sql line 8, fails: ", "  statement 4, rollback\n      USE Master\n",
          "  message      [Microsoft][ODBC SQL Server Driver][SQL Server]No tab",
          "Stopped: FrmSQLNonQuery stays", "8 statements (1 failed)"});
  options.FailSql.clear();
  options.FailRequest = 100000;
  expect(Tell(0), {"  runs         D:\\Pack\\AddOns\\a.exe  ends with 3\n",
                   "  writes       C:\\Program Files\\TA-LU\\App\\c.txt: Pw=***\n",
                   "  record       SystemDSN:SQL Server,Books,Sales,Clerk,***\n", "PWD=***",
                   "  last words   Bye\n", "Request 100000 never came."});
}

TEST_F(PlanTest, TellsAnErrorThatNoRequestRaised) {
  struct Case {
    const char* Script;
    const char* Told;
  };
  const Case cases[] = {
      {"--taluGO\r\n\r\nPRINT 1\r\nGO\r\nCREATE LOGIN Clerk\r\nGO\r\n",
       "  error        f.sql line 5: Invalid procedure call or argument\n"
       "               (the build looks in the batch for a name's end,"},
      // Its files are moved by then.
      {"--taluGO\r\nPRINT 1\r\nGO\r\nCREATE DATABASE "
       "Sales\r\nON(FILENAME='C:\\D\\S.mdf')\r\nGO\r\n",
       "  error        f.sql line 4: Invalid procedure call or argument\n"},
      {"--taluGO\r\nALTER DATABASE Sales\r\nGO\r\n",
       "  error        f.sql line 2: Invalid procedure call or argument\n"
       "               (the backup looks for a name"},
      {"--taluLineByLine\r\nPRINT 1\r\n DROP DATABASE\r\nPRINT 2\r\nALTER DATABASE x\r\n",
       "  error        f.sql line 5: Invalid procedure call or argument\n"},
  };
  Configure("FreshDBSript f.sql DBSript 1");
  options.AcceptAll = true;
  for (const Case& test : cases) {
    pack.Put("SQLScript/Fresh/f.sql", test.Script);
    const std::string told = Tell(1);
    EXPECT_NE(told.find(test.Told), std::string::npos) << told;
    EXPECT_EQ(told.find("  error        Inv"), std::string::npos) << told;
  }
  pack.Put("Application/a.b", "");
  EXPECT_NE(Tell(1).find("(a file's name has less than four characters;"), std::string::npos);
}

TEST_F(PlanTest, ShowsAHundredOfAKindUnlessTold) {
  Configure("FreshDBSript f.sql");
  for (int i = 1; i <= 120; ++i) pack.Put("Application/f" + std::to_string(i) + ".txt", "");
  std::string script = "--taluLineByLine\r\n";
  for (int i = 0; i < 250; ++i) script += i == 249 ? "PRINT 'last'\r\n" : "PRINT 1\r\n";
  pack.Put("SQLScript/Fresh/f.sql", script);
  options.FailSql = {{"last"}};
  const auto counts = [&](int listed) {
    std::ostringstream out;
    PlanCommand({.Run = options, .Listed = listed, .Save = save}, out);
    const std::string told = out.str();
    std::string counted;
    for (const char* part :
         {"\n  statement ", "\n  file ", "statement    (149 more; --full shows all)",
          "statement    (249; --full shows all)", "file         (21 more; --full",
          ", f.sql line 251, fails: ", "\n250 statements (1 failed), "}) {
      int found = 0;
      for (std::size_t at = told.find(part); at != std::string::npos;
           at = told.find(part, at + 1)) {
        ++found;
      }
      counted += std::to_string(found) + " ";
    }
    return counted;
  };
  EXPECT_EQ(counts(PlanCommandOptions().Listed), "102 0 1 0 0 1 1 ");
  EXPECT_EQ(counts(PlanAccount::kAll), "250 0 0 0 0 1 1 ");
  EXPECT_EQ(counts(0), "2 0 0 1 0 1 1 ");
  options.Mode = InstallMode::Client;
  EXPECT_EQ(counts(100), "0 101 0 0 1 0 0 ");
}

TEST_F(PlanTest, SaysWhatItCannotTell) {
  pack.Put("SQLScript/Fresh/f.sql",
           "--taluGO\r\nEXEC (N'CREATE DATABASE [' + @n + N']')\r\nGO\r\nUSE Sales\r\nGO\r\n");
  const std::string account = Tell(0);
  EXPECT_NE(account.find("f.sql line 4, cannot tell whether there is a database Sales\n"),
            std::string::npos)
      << account;
  EXPECT_NE(account.find("\n1 time above it cannot tell: "), std::string::npos) << account;
  const std::string json = Tell(0, true);
  const char* doubt =
      R"(USE Sales","script":"f.sql","line":4,"timeout":300,"ok":true,"doubt":"wheth)";
  EXPECT_NE(json.find(doubt), std::string::npos) << json;
}

TEST_F(PlanTest, JournalIsJson) {
  Configure("DemoDBSript d.sql");
  pack.Put("SQLScript/Demo/d.sql", "--taluLineByLine\r\nSELECT '\x80\"\\'\tUSE Gone\r\n");
  options.Type = InstallType::Demo;
  const std::string json = Tell(1, true);
  for (
      const char* line :
      {R"({"event":"show","form":"FrmType"})",
       R"({"event":"mkdir","path":"C:\\Program Files\\TA-LU"})",
       R"({"event":"connect","text":"driver={SQL Server};server=SERVER;uid=sa;pwd=password;database=Master","ok":true})",
       R"({"event":"sql","text":"SELECT '€\"\\'\u0009USE Gone","script":"d.sql","line":2,"timeout":300,"ok":false,"error":{"number":-2147217900,"description":"[Microsoft][ODBC SQL Server Driver][SQL Server]Database 'Gone' does not exist. Make sure that the name is entered correctly."}})"}) {
    EXPECT_NE(json.find(line + std::string("\n")), std::string::npos) << line << "\n" << json;
  }
}

TEST_F(PlanTest, TakesTheInstallationBackAtItsEnd) {
  PlanCommandOptions command;
  command.Run = options;
  command.TakeBack = true;
  std::ostringstream kept;
  EXPECT_EQ(PlanCommand(command, kept), 0);
  EXPECT_EQ(kept.str().substr(std::min(kept.str().find("\nTaken back"), kept.str().size())), R"(
Taken back
  gone   file             C:\Program Files\TA-LU\App\Help.txt
  stays  database         Sales - Databases and logins are kept.
  stays  login            Clerk - Databases and logins are kept.
  gone   folder           C:\Program Files\TA-LU\App\Data
  gone   backups          C:\Program Files\TA-LU\App BackUp
  gone   program          C:\Program Files\TA-LU\App
  gone: 4, stays: 2, left: 0
)");
  command.DropDatabases = true;
  command.Json = true;
  std::ostringstream dropped;
  EXPECT_EQ(PlanCommand(command, dropped), 0);
  EXPECT_TRUE(dropped.str().ends_with(R"({"result":"done","gone":6,"stays":0,"left":0})"
                                      "\n"));
}

}  // namespace
}  // namespace talu::packcheck
