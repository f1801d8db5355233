#include <algorithm>

#include "Pack.h"
#include "database/BatchNames.h"
#include "pages/FrmSQLNonQuery.h"

namespace talu {
namespace {

class DatabaseTest : public PackTest {
 protected:
  DatabaseTest() {
    machine.Disk.MakeFolders("C:\\Progs");
    List({"a.sql"});
  }

  /// The fresh scripts of the pack; the backup scans them when `scanned`.
  void List(const std::vector<std::string>& names, bool scanned = false) {
    Configure({Block("FreshDBSript", names), Block("DemoDBSript", {"d.sql"}),
               Block("UpgradeDBSript", {"u.sql"}),
               Block("DBSript", scanned ? names : std::vector<std::string>{})});
  }
  void Script(const std::string& name, const std::vector<std::string>& lines) {
    Put("SQLScript\\Fresh\\" + name, CrLfLines(lines));
  }
  void Build() { Install("OptServer"); }
  /// A second showing of the page, whose Back the first build has disabled.
  void BuildAgain() {
    windows.Run([this] { wizard.Page<FrmSQLNonQuery>().Show(); });
  }
  /// What the pages before have left behind.
  InstallState AtTheBuild() {
    machine.Disk.MakeFolders("C:\\Progs\\App");
    InstallState state;
    state.AppFolderPath = "C:\\Progs\\App";
    state.AppFolderName = "App";
    state.DBFolderPath = "C:\\Progs\\App\\Data";
    state.ServerName = "SRV1";
    state.LogFileNumber = 1;
    state.UninstallFileNumber = 2;
    return state;
  }
  void FailOn(const std::string& text) {
    machine.Server.FailStatements(text, StatementError("Told to fail."));
  }

  static std::vector<std::string> From(const std::vector<std::string>& list, std::size_t start) {
    return {list.begin() + static_cast<std::ptrdiff_t>(start), list.end()};
  }

  const std::string failed = "[Microsoft][ODBC SQL Server Driver][SQL Server]Told to fail.";
  const std::string create =
      "CREATE DATABASE SalesDB ON PRIMARY (NAME=S, FILENAME='C:\\Old\\Data\\S.mdf') LOG ON "
      "(NAME=L, FILENAME='C:\\Old\\Data\\S_log.ldf')";
};

TEST_F(DatabaseTest, BatchesMoveTheirFilesAndRecordTheirNames) {
  List({"a.sql", "b.sql"});
  Script("a.sql",
         {"  --TALUgo", "", create, " go ", "CREATE LOGIN Seller WITH PASSWORD='x'", "GO",
          "SELECT 1", "-- no --taluGO is sent", "--taluLineByLine", "GO -- end", "Go", "GO"});
  Script("b.sql", {"--taluLineByLine", "  INSERT 1 ", "x --talulinebyline y", "GO"});
  Build();
  const std::string data = app + "\\Data";
  EXPECT_EQ(Statements(), (std::vector<std::string>{"\r\n" + Replace(create, "C:\\Old\\Data", data),
                                                    "\r\nCREATE LOGIN Seller WITH PASSWORD='x'",
                                                    "\r\nSELECT 1\r\n--taluLineByLine\r\nGO -- end",
                                                    "  INSERT 1 ", "GO"}));
  EXPECT_EQ(Statements().size(), 5U);
  EXPECT_EQ(machine.Journal.Texts("sql", "timeout").front(), "300");
  EXPECT_EQ(wizard.State.CreatedDatabaseList, ", SalesDB");
  EXPECT_EQ(From(Records(), 3),
            (std::vector<std::string>{"UsrName:sa", "PsWord:secret", "DBNames:1, SalesDB",
                                      "DBLogins:1, Seller"}));
  EXPECT_EQ(windows.VisibleForm(), "FrmApplication");
  EXPECT_EQ(LogEntries().at(4), "Database creation completed successfully...");
}

TEST_F(DatabaseTest, WhatIsCutFromOddStatements) {
  struct Case {
    const char* what;
    std::string batch;
    std::string list;
    int errors;
    bool rewritten;
  };
  const Case cases[] = {
      {"lower case", "create database X (FILENAME='C:\\Old\\x.mdf')", "", 0, false},
      {"no FILENAME", "CREATE DATABASE X ON", "", 0, false},
      {"a line end behind the name", "CREATE DATABASE X\r\nON (FILENAME='C:\\Old\\x.mdf')",
       ", X\r\nON", 0, true},
      {"no drive letter", "CREATE DATABASE X ON (FILENAME='x.mdf')", ", X", 3, false},
      {"no .mdf", "CREATE DATABASE X ON (FILENAME='C:\\Old\\x.MDF')", ", X", 2, false},
      {"no blank behind the name", "CREATE DATABASE FILENAME='C:\\Old\\x.mdf'", "", 1, true},
      {"two in one batch",
       "CREATE DATABASE X ON (FILENAME='C:\\Old\\x.mdf') CREATE DATABASE Y ON "
       "(FILENAME='C:\\Old\\y.mdf')",
       ", X", 0, true},
  };
  Build();  // the folders
  for (const Case& test : cases) {
    SCOPED_TRACE(test.what);
    Script("a.sql", {"--taluGO", test.batch, "GO"});
    wizard.State.CreatedDatabaseList.clear();
    machine.Server.Databases.clear();
    const auto statements = Statements().size();
    const auto entries = LogEntries().size();
    BuildAgain();
    EXPECT_EQ(wizard.State.CreatedDatabaseList, test.list);
    ASSERT_GT(Statements().size(), statements);
    EXPECT_EQ(Contains(Statements().at(statements), app + "\\Data\\x"), test.rewritten);
    int errors = 0;
    for (auto at = entries; at < LogEntries().size(); ++at) {
      errors += Contains(LogEntries().at(at), "Invalid procedure call or argument") ? 1 : 0;
    }
    EXPECT_EQ(errors, test.errors);
  }
}

TEST_F(DatabaseTest, EveryEndingInItsOrder) {
  using Texts = std::vector<std::string>;
  const std::string connect = "connect driver={SQL Server};server=SRV1;uid=sa;pwd=secret;da";
  const std::string mkdir = "mkdir C:\\Progs\\TA-LU\\App BackUp";
  const std::string told = "log //|//|[Microsoft][ODBC SQL Server Driver][SQL Server]Tol";
  const std::string unreachable = "log //|//|[Microsoft][ODBC SQL Server Driver][DBNETLIB]SQL S";
  const std::string unconnected = "log //|//|The connection cannot be used to perform this oper";
  const std::string missing = "log //|//|File not found";
  const std::string refused = "Database authentication failed, Can not continue ...";
  const Texts bad = {"--taluGO", create, "GO", "CREATE LOGIN Seller WITH x", "GO", "BAD", "GO"};
  const Texts badStory = {"events",
                          "sql |CREATE DATABASE SalesDB ON PRIMARY (NAME=S, FILENAME='C",
                          "events",
                          "ShpProgBar 441",
                          "events",
                          "sql |CREATE LOGIN Seller WITH x",
                          "events",
                          "ShpProgBar 442",
                          "events",
                          "sql |BAD FAILED",
                          told,
                          "events",
                          "ShpProgBar 443",
                          "sql USE Master",
                          "sql ALTER DATABASE  SalesDB SET OFFLINE WITH ROLLBACK IMMEDI",
                          "sql DROP DATABASE  SalesDB",
                          "sql USE Master",
                          "sql DROP LOGIN  Seller"};
  const auto all = [](std::initializer_list<Texts> parts) {
    Texts joined;
    for (const Texts& part : parts) joined.insert(joined.end(), part.begin(), part.end());
    return joined;
  };
  struct Case {
    const char* what;
    Texts a;
    Texts b;
    bool scanned;
    bool reachable;
    bool configured;
    Texts story;
    int files;  // that are open at the end, log and record too
  };
  const Case cases[] = {
      {"success",
       {"--taluGO", "CREATE LOGIN Seller WITH x", "GO"},
       {"--taluLineByLine", "SELECT 1"},
       true,
       true,
       true,
       {"ShpProgBar 441",
        "events",
        "events",
        "ShpProgBar 442",
        "events",
        mkdir,
        connect,
        connect,
        "events",
        "sql |CREATE LOGIN Seller WITH x",
        "events",
        "ShpProgBar 443",
        "events",
        "sql SELECT 1",
        "events",
        "ShpProgBar 444",
        "disconnect",
        "LblMsg Database creation completed successfully...",
        "log //|Database creation completed successfully...",
        "ShpProgBar 5860",
        "record UsrName:sa",
        "record PsWord:secret",
        "record DBNames:0",
        "record DBLogins:1, Seller"},
       2},
      {"a name that the backup cannot cut",
       {"--taluGO", "CREATE DATABASE Sales", "GO", "USE master", "GO"},
       {"--taluGO"},
       true,
       true,
       true,
       {"log //|//|Invalid procedure call or argument||CREATE DATABAS",
        "ShpProgBar 441",
        "events",
        "ShpProgBar 442",
        "events",
        mkdir,
        connect,
        "sql USE Master",
        "sql IF  EXISTS (SELECT name FROM sys.databases WHERE name = ",
        connect,
        "events",
        "sql |CREATE DATABASE Sales",
        "events",
        "ShpProgBar 443",
        "events",
        "sql |USE master",
        "events",
        "ShpProgBar 444",
        "disconnect",
        "LblMsg Database creation completed successfully...",
        "log //|Database creation completed successfully...",
        "ShpProgBar 5860",
        "record UsrName:sa",
        "record PsWord:secret",
        "record DBNames:0",
        "record DBLogins:0"},
       2},
      {"a batch fails",
       bad,
       {"--taluGO"},
       false,
       true,
       true,
       all({{mkdir, connect, connect},
            badStory,
            {"disconnect", "ShpProgBar 440", "LblMsg Database creation not finished...",
             "log //|Database creation not finished...",
             "msgbox [Microsoft][ODBC SQL Server Driver][SQL Server]Told t"}}),
       2},
      {"malformed, after a batch that fails",
       bad,
       {"SELECT 1"},
       false,
       true,
       true,
       all({{mkdir, connect, connect},
            badStory,
            {"ShpProgBar 440", "LblMsg Script format is not correct....",
             "log //|Script format is not correct....",
             "msgbox [Microsoft][ODBC SQL Server Driver][SQL Server]Told t"}}),
       4},
      {"no server",
       bad,
       {},
       false,
       false,
       true,
       {mkdir, connect + " FAILED", unreachable, unconnected, connect + " FAILED", unreachable,
        "LblMsg " + refused, "log //|" + refused},
       3},
      {"no server, no configuration",
       bad,
       {},
       false,
       false,
       false,
       {missing, mkdir, connect + " FAILED", unreachable, unconnected, missing, connect + " FAILED",
        unreachable, "LblMsg " + refused, "log //|" + refused},
       2},
  };
  for (const Case& test : cases) {
    SCOPED_TRACE(test.what);
    Stage stage;
    stage.machine.Disk.MakeFolders("C:\\Progs");
    const Texts names = {"a.sql", "b.sql"};
    stage.Configure(
        {Block("FreshDBSript", names), Block("DBSript", test.scanned ? names : Texts{})});
    stage.Put("SQLScript\\Fresh\\a.sql", CrLfLines(test.a));
    stage.Put("SQLScript\\Fresh\\b.sql", CrLfLines(test.b));
    stage.machine.Server.FailStatements("BAD", StatementError("Told to fail."));
    stage.NoteEvents();
    stage.GoToLocation("OptFresh", "OptServer", "C:\\Progs");
    stage.machine.Server.Reachable = test.reachable;
    if (!test.configured) stage.machine.Disk.DeleteFile("D:\\Pack\\AppCfg.txt", false);
    stage.windows.Click("CmdNext");
    const Texts story = stage.Story();
    const auto end = std::ranges::find(story, "hide FrmSQLNonQuery");
    const Texts page(std::find(story.begin(), end, "show FrmSQLNonQuery") + 1, end);
    EXPECT_EQ(page, all({{"CmdPrev false", "LblMsg Building Database. Please wait....",
                          "log //|Building Database Started...."},
                         test.story}));
    EXPECT_EQ(stage.wizard.TextFiles.FreeFile(), test.files + 1);
  }
}

TEST_F(DatabaseTest, AfterAMalformedScriptTheNextBuildBeginsOutsideOfAnyBlock) {
  Script("a.sql", {"SELECT 1", "--taluLineByLine", "LEFT IN THE OPEN FILE"});
  Build();
  List({"none.sql", "a.sql"});
  Script("a.sql", {"--taluGO", "SELECT 2", "GO"});
  const auto entries = LogEntries().size();
  BuildAgain();
  EXPECT_EQ(Statements(), std::vector<std::string>{"\r\nSELECT 2"});
  // The connections of the first one and of its backup are still open.
  const std::string open = "//\r\nOperation is not allowed when the object is open.\r\n\r\n";
  EXPECT_EQ(From(LogEntries(), entries),
            (std::vector<std::string>{"Building Database Started....", open, open, open, open,
                                      "//\r\nFile not found\r\n\r\n",
                                      "Database creation not finished..."}));
}

TEST_F(DatabaseTest, AFailedBuildIsRolledBackAndASecondOneDropsTheOldestNames) {
  Script("a.sql",
         {"--taluGO", create, "GO", "CREATE DATABASE Stock ON (FILENAME='C:\\Old\\t.mdf')", "GO",
          "CREATE LOGIN Seller WITH PASSWORD='x'", "GO", "BAD", "GO", "AFTER", "GO"});
  FailOn("BAD");
  Build();
  EXPECT_EQ(Statements().at(4), "\r\nAFTER") << "a failing batch does not stop the build";
  const std::vector<std::string> drops = {
      "USE Master",
      "ALTER DATABASE  SalesDB SET OFFLINE WITH ROLLBACK IMMEDIATE",
      "DROP DATABASE  SalesDB",
      "USE Master",
      "ALTER DATABASE  Stock SET OFFLINE WITH ROLLBACK IMMEDIATE",
      "DROP DATABASE  Stock",
      "USE Master",
      "DROP LOGIN  Seller"};
  EXPECT_EQ(From(Statements(), 5), drops);
  EXPECT_TRUE(machine.Server.Databases.empty() && machine.Server.Logins.empty());
  EXPECT_EQ(windows.Messages(), std::vector<std::string>{failed});
  EXPECT_FALSE(windows.Shown("CmdPrev")->Enabled || windows.Shown("CmdNext")->Enabled);
  EXPECT_EQ(LogEntries().at(4), "//\r\n" + failed + "\r\n\r\nBAD\r\n");

  // The next build counts from 0 but its list goes on: the oldest names are dropped.
  Script("a.sql",
         {"--taluGO", "CREATE DATABASE Third ON (FILENAME='C:\\Old\\h.mdf')", "GO", "BAD", "GO"});
  const auto before = Statements().size();
  BuildAgain();
  EXPECT_EQ(From(Statements(), before + 2),
            (std::vector<std::string>{
                "USE Master", "ALTER DATABASE  SalesDB SET OFFLINE WITH ROLLBACK IMMEDIATE"}));
  EXPECT_TRUE(machine.Server.Databases.contains("THIRD"));

  Script("a.sql", {"--taluGO", "SELECT 1", "GO"});
  BuildAgain();
  EXPECT_EQ(windows.VisibleForm(), "FrmApplication");
  EXPECT_EQ(Records().at(5), "DBNames:0, SalesDB, Stock, Third");
}

TEST_F(DatabaseTest, AnEntryOfBlanksIsPassedOver) {
  Script("a.sql", {"--taluGO", "CREATE DATABASE  X ON (FILENAME='C:\\Old\\x.mdf')", "GO", create,
                   "GO", "BAD", "GO", "CREATE LOGIN  Seller WITH PASSWORD='x'", "GO"});
  FailOn("BAD");
  Build();
  EXPECT_EQ(wizard.State.CreatedDatabaseList, ", , SalesDB");
  EXPECT_EQ(From(Statements(), 4).size(), 3U) << "not even USE Master for the first, or the login";
  EXPECT_EQ(machine.Server.Databases, std::set<std::string>{"X"});
}

TEST_F(DatabaseTest, TheRollbackWalksTheListsAsTheyAreAndNoFurther) {
  machine.Server.AcceptAll = true;
  FailOn("BAD");
  const auto database = [](const std::string& name) {
    return "CREATE DATABASE " + name + " ON (FILENAME='C:\\Old\\" + name + ".mdf')";
  };
  Script("a.sql", {"--taluGO", database("A"), "GO", "CREATE LOGIN L WITH x", "GO", "BAD", "GO"});
  Build();
  Script("a.sql", {"--taluGO", database("B"), "GO", database("C"), "GO", "CREATE LOGIN M WITH x",
                   "GO", "CREATE LOGIN", "GO", "CREATE LOGIN N", "GO", "BAD", "GO"});
  const auto before = Statements().size();
  BuildAgain();
  const auto alter = [](const std::string& name) {
    return "ALTER DATABASE  " + name + " SET OFFLINE WITH ROLLBACK IMMEDIATE";
  };
  EXPECT_EQ(From(Statements(), before + 6),
            (std::vector<std::string>{"USE Master", alter("A"), "DROP DATABASE  A", "USE Master",
                                      alter("B"), "DROP DATABASE  B", "USE Master", "DROP LOGIN  L",
                                      "USE Master", "DROP LOGIN  M"}));
  // The names of two logins could not be cut, yet they are counted.
  EXPECT_EQ(windows.Messages().back(), "Subscript out of range");
}

TEST_F(DatabaseTest, TheEntryOfTheBackupThatFailsIsAnErrorOfTheBuild) {
  const auto stage = PlayFailing("Path not found", 0, [](PackTest& play) {
    play.machine.Disk.MakeFolders("C:\\Progs");
    play.Configure({Block("FreshDBSript", {"none.sql"}), Block("DBSript", {"one"})});
    play.Install("OptServer");
  });
  EXPECT_EQ(stage->windows.VisibleForm(), "FrmSQLNonQuery");
  EXPECT_EQ(stage->LogEntries().at(4), "//\r\nDisk full\r\n\r\n");
  EXPECT_EQ(stage->machine.Journal.Texts("connect", "text").size(), 2U)
      << "the backup's is not made";
}

TEST_F(DatabaseTest, BehindTheLast16BitEntryTheRollbackOverflows) {
  std::string text = "--taluGO\r\nBAD\r\nGO\r\n";
  for (int i = 0; i < 32767; ++i) text += "CREATE LOGIN  X \r\nGO\r\n";
  Put("SQLScript\\Fresh\\a.sql", text);
  FailOn("BAD");
  machine.Server.AcceptAll = true;
  Build();
  EXPECT_EQ(windows.Messages(), std::vector<std::string>{"Overflow"});
}

TEST_F(DatabaseTest, ModesLeakAndResetAsTheyAlwaysDid) {
  List({"a.sql", "b.sql", "c.sql"});
  Script("a.sql", {"--taluLineByLine", "ONE", "--taluGO", "TWO"});  // no last GO
  Script("b.sql", {"THREE"});                                       // line mode has stayed on
  Script("c.sql", {"--taluGO", "FOUR", "GO", "FIVE"});
  Build();
  EXPECT_EQ(Statements(), (std::vector<std::string>{"ONE", "THREE", "\r\nFOUR"}));
  // In line mode a line replaces what was gathered; only the last file's rest is still there.
  Script("a.sql", {"--taluGO", "SIX", "GO"});
  List({"a.sql"});
  BuildAgain();
  EXPECT_EQ(Statements().back(), "\r\nFIVE\r\nSIX");
  Script("a.sql", {"SEVEN"});
  BuildAgain();
  EXPECT_EQ(Statements().back(), "SEVEN");
}

TEST_F(DatabaseTest, TheConfigurationIsReadTheBuildsOwnWay) {
  Script("a.sql", {"--taluLineByLine", "A"});
  Script("b.sql", {"--taluLineByLine", "B"});
  struct Case {
    const char* what;
    std::string file;
    std::vector<std::string> statements;
    int missing;  // the brace that closed a block is still a name when the next one opens
  };
  const Case cases[] = {
      {"a blank line before another block",
       "\r\n" + Block("Other", {"b.sql"}) + Block("FreshDBSript", {"a.sql"}),
       {"B", "A"},
       1},
      {"a key's beginning, a blank value", Block("Fresh", {"a.sql", "", "b.sql"}), {"A", "B"}, 0},
      {"lines before the brace", "FreshDBSript\r\nb.sql\r\n{\r\na.sql\r\n}\r\n", {"A"}, 0},
  };
  const std::string folders =
      Block("AppTitle", {"T"}) + Block("AppFolder", {"App"}) + Block("DBFolder", {"Data"});
  Build();
  for (const Case& test : cases) {
    SCOPED_TRACE(test.what);
    Put("AppCfg.txt", folders + test.file);
    const auto before = Statements().size();
    const auto entries = LogEntries().size();
    BuildAgain();
    EXPECT_EQ(From(Statements(), before), test.statements);
    EXPECT_EQ(std::ranges::count(From(LogEntries(), entries), "//\r\nFile not found\r\n\r\n"),
              test.missing);
  }
}

TEST_F(DatabaseTest, EveryBuildComesToItsEnd) {
  struct Case {
    const char* what;
    std::string script;
    std::string status;
    std::size_t messages;
  };
  const std::string done = "Database creation completed successfully...";
  const std::string malformed = "Script format is not correct....";
  const Case cases[] = {
      {"empty", "", done, 0},
      {"no directive", "SELECT 1\r\n", malformed, 0},
      {"no last GO", "--taluGO\r\nSELECT 1\r\n", done, 0},
      {"LF alone", "--taluGO\nSELECT 1\nGO\n", done, 0},
      {"8-bit and NUL", std::string("--taluGO\r\nSELECT '\xE9\0'\r\nGO\r\n", 26), done, 0},
  };
  for (const Case& test : cases) {
    SCOPED_TRACE(test.what);
    Wizard fresh(machine.Parts);
    Put("SQLScript\\Fresh\\a.sql", test.script);
    fresh.State = AtTheBuild();
    const auto messages = windows.Messages().size();
    windows.Run([&] { fresh.Page<FrmSQLNonQuery>().Show(); });
    EXPECT_EQ(fresh.Page<FrmSQLNonQuery>().LblMsg.Caption.Get(), test.status);
    EXPECT_EQ(windows.Messages().size() - messages, test.messages);
  }
}

TEST_F(DatabaseTest, WithoutServerOrFolderNothingIsRunAndThePageStays) {
  Script("a.sql", {"--taluGO", "SELECT 1", "GO"});
  Build();
  machine.Server.Reachable = false;
  BuildAgain();
  EXPECT_EQ(windows.VisibleForm(), "FrmSQLNonQuery") << "the success was another build's";
  machine.Server.Reachable = true;
  wizard.State.DBFolderPath = "";
  BuildAgain();
  EXPECT_EQ(LogEntries().back(), "//\r\n\r\n\r\n");
  EXPECT_EQ(Statements().size(), 1U);
}

/// Data access of which every call works, but for those of one name.
class Refusing : public Ado {
 public:
  explicit Refusing(std::string call) : refused_(std::move(call)) {}
  std::unique_ptr<Connection> CreateConnection() override {
    return std::make_unique<RefusingConnection>(*this);
  }
  std::unique_ptr<Command> CreateCommand() override {
    return std::make_unique<RefusingCommand>(*this);
  }
  std::vector<std::string> Calls;

 private:
  struct RefusingConnection : Connection {
    explicit RefusingConnection(Refusing& all) : All(all) {}
    void ConnectionString(const std::string&) override { All.Call("text"); }
    void Open(const std::string&) override { All.Call("open"); }
    void Close() override { All.Call("close"); }
    int State() override { return All.Call("state"), 1; }
    Refusing& All;
  };
  struct RefusingCommand : Command {
    explicit RefusingCommand(Refusing& all) : All(all) {}
    void ActiveConnection(Connection&) override { All.Call("bind"); }
    void CommandTimeout(int) override { All.Call("time-out"); }
    void CommandText(const std::string& text) override { All.Call("statement " + text); }
    void Execute() override { All.Call("execute"); }
    Refusing& All;
  };
  void Call(const std::string& call) {
    Calls.push_back(call);
    if (call.starts_with(refused_)) throw RuntimeError(error::kUnspecified);
  }
  std::string refused_;
};

TEST_F(DatabaseTest, ACallThatFailsCostsNoOther) {
  List({"a.sql"}, true);
  Script("a.sql", {"--taluLineByLine", "USE X"});
  for (const char* call : {"text", "open", "close", "state", "bind", "time-out", "execute"}) {
    SCOPED_TRACE(call);
    Refusing data(call);
    Machine parts{.Windows = windows,
                  .Files = machine.Files,
                  .Shell = machine.Files,
                  .DataAccess = data,
                  .Odbc = machine.Odbc,
                  .Programs = machine.Programs,
                  .Scripting = machine.Scripting,
                  .Settings = machine.Settings,
                  .Clock = machine.Clock,
                  .CodePage = machine.CodePage,
                  .AppPath = "D:\\Pack"};
    Wizard other(parts);
    other.State = AtTheBuild();
    windows.Run([&] { other.Page<FrmSQLNonQuery>().Show(); });
    for (std::string& made : data.Calls) made = made.substr(0, 14);
    std::vector<std::string> calls = {"text",           "text",    "open",           "bind",
                                      "statement USE ", "execute", "statement IF  ", "execute",
                                      "open",           "state",   "bind",           "time-out",
                                      "statement USE ", "execute", "close"};
    if (std::string(call) == "state") calls.resize(10);  // not known to be open: closed
    EXPECT_EQ(data.Calls, calls);
  }
}

TEST_F(DatabaseTest, ALineWhoseReadingFailsIsNotTakenInPart) {
  const std::string blanks(70000, ' ');
  Script("a.sql", {"--taluLineByLine", "USE A" + blanks, "USE B"});
  machine.Server.AcceptAll = true;
  const std::string list = Block("FreshDBSript", {"a.sql"});
  // The second of two reads without anything between fails: of the backup's scan, of the build,
  // and, where the configuration has a long line, of the build's list.
  struct Case {
    const char* what;
    std::vector<std::string> blocks;
    int pair;
    std::size_t statements;
    int missing;
  };
  for (const Case& test :
       {Case{"backup", {list, Block("DBSript", {"a.sql"})}, 1, 4, 0},
        {"build", {list}, 1, 1, 0},
        {"list", {Block("FreshDBSript", {"a.sql", "none" + blanks})}, 2, 2, 1},
        {"key of another list", {Block("Other" + blanks, {"a.sql"}), list}, 1, 2, 0}}) {
    SCOPED_TRACE(test.what);
    Configure(test.blocks);
    Wizard other(machine.Parts);
    other.State = AtTheBuild();
    const auto statements = Statements().size();
    const auto entries = LogEntries().size();
    std::string last;
    int pairs = test.pair;
    machine.Journal.OnRequest = [&](int, const std::string& kind) {
      if (std::exchange(last, kind) == "read" && kind == "read" && --pairs == 0)
        throw RuntimeError(error::kDeviceIO);
    };
    windows.Run([&] { other.Page<FrmSQLNonQuery>().Show(); });
    machine.Journal.OnRequest = nullptr;
    EXPECT_EQ(Statements().size() - statements, test.statements);
    EXPECT_EQ(std::ranges::count(From(LogEntries(), entries), "//\r\nFile not found\r\n\r\n"),
              test.missing);
  }
}

TEST_F(DatabaseTest, TheBarGrowsToItsLimitAndFallsBack) {
  std::vector<std::string> lines(600, "X");
  lines.insert(lines.begin(), "--taluLineByLine");
  Script("a.sql", lines);
  List({"a.sql"}, true);
  Build();
  List({"a.sql"});
  wizard.Page<FrmSQLNonQuery>().ShpProgBar.Width = 5500;
  BuildAgain();
  std::vector<int> turns;
  int last = 440;
  for (const JournalEvent& event : machine.Journal.Events()) {
    if (event.Text("form") != "FrmSQLNonQuery" || event.Text("property") != "Width") continue;
    const int width = std::stoi(event.Text("value"));
    if (width != last + 1) turns.insert(turns.end(), {last, width});
    last = width;
  }
  // The backup's scan, the build behind it and its end; then what the test set, and the second
  // build.
  EXPECT_EQ(turns, (std::vector<int>{1000, 500, 1139, 5860, 5860, 5500, 6000, 5000, 5099, 5860}));
}

TEST(BatchNamesTest, WhatTheBackupTakesForANameAndWhereItGivesUp) {
  struct Case {
    std::string batch;
    std::string names;  // each behind a comma
    int error = 0;
  };
  const Case cases[] = {
      {"CREATE DATABASE Sales ON PRIMARY", ",Sales"},
      {"ALTER DATABASE [My Sales] SET X ", ",[My Sales]"},
      {"ALTER DATABASE [Sales SET X ", "", 5},
      {"USE D DROP DATABASE C ALTER DATABASE B CREATE DATABASE A X",
       ",A,B,C ALTER DATABASE B CREATE DATABASE A X,"
       "D DROP DATABASE C ALTER DATABASE B CREATE DATABASE A X"},
      {"CAUSER x USE Sales", ",x USE Sales"},
      {"create database x y", ""},
      {"CREATE DATABASE Sales\r\nDROP DATABASE Old", ",Sales\r\nDROP,Old"},
      {"USE Old\r\nCREATE DATABASE Sales", "", 5},
      {std::string(32760, '-') + " CREATE DATABASE A B", "", 6},
      {std::string(32740, '-') + "USE A", ",A"},
  };
  for (const Case& test : cases) {
    SCOPED_TRACE(test.batch);
    std::string names;
    int error = 0;
    try {
      for (const std::string_view statement : kNamingStatements) {
        if (const auto name = NamedDatabase(test.batch, statement)) names += "," + *name;
      }
    } catch (const RuntimeError& raised) {
      error = raised.Number;
    }
    EXPECT_EQ(names, test.names);
    EXPECT_EQ(error, test.error);
  }
}

TEST_F(DatabaseTest, EachNameFoundIsBackedUp) {
  const std::string longest(128, 'n');
  List({"a.sql"}, true);
  Script("a.sql", {"--taluGO", "ALTER DATABASE [My Sales] SET X", "GO", "USE " + longest, "GO",
                   "USE x" + longest, "GO", "USE Old", "CREATE DATABASE Sales", "GO"});
  machine.Server.AcceptAll = true;
  Build();
  std::vector<std::string> expected;
  for (const std::string& name : {std::string("My Sales"), longest}) {
    expected.push_back("USE Master");
    expected.push_back("IF  EXISTS (SELECT name FROM sys.databases WHERE name = N'" + name +
                       "') BACKUP DATABASE " + name + " TO  DISK = N'" + app + " BackUp\\Talu_" +
                       name + "_7_3_2012_9_5.bkp ' WITH NOFORMAT, INIT,  NAME = N'" + name +
                       "-Full Database Backup', SKIP, NOREWIND, NOUNLOAD,  STATS = 10");
  }
  expected.push_back("\r\nALTER DATABASE [My Sales] SET X");
  auto statements = Statements();
  auto timeouts = machine.Journal.Texts("sql", "timeout");
  statements.resize(expected.size());
  timeouts.resize(expected.size());
  EXPECT_EQ(statements, expected) << "no name of the batch in which one has no end";
  EXPECT_EQ(timeouts, (std::vector<std::string>{"", "", "", "", "300"}));
}

TEST_F(DatabaseTest, WhatTheBackupHasFoundLivesAsLongAsTheProgram) {
  List({"a.sql", "b.sql", "c.sql", "d.sql"}, true);
  Script("a.sql", {"--taluGO", "USE Sales2010", "GO", "USE Sales", "GO", "USE Rest"});
  Script("b.sql", {"--taluGO", "GO"});  // the end of the last batch
  Script("c.sql", {"--taluLineByLine", "USE Stock"});
  Script("d.sql", {"USE Late"});  // the line mode has stayed on
  machine.Server.Databases = {"SALES2010", "SALES", "REST", "STOCK", "LATE"};
  Build();
  const auto backups = [this] {
    std::string names;
    for (const std::string& statement : Statements()) {
      const std::size_t at = statement.find("BACKUP DATABASE ");
      if (at != std::string::npos) names += Split(statement.substr(at), ' ').at(2) + " ";
    }
    return names;
  };
  const std::string first = "Sales2010 Rest Stock Late ";
  EXPECT_EQ(backups(), first) << "Sales is part of a name in the list";
  Script("a.sql", {"--taluGO", "USE Other", "GO"});
  // The scripts cannot be counted now: there are as many as before.
  machine.Journal.FailRequest(machine.Journal.Requests() + 4, RuntimeError(error::kDeviceIO));
  BuildAgain();
  EXPECT_EQ(backups(), first + first + "Other ");
  // Its connection is still open from the first time.
  EXPECT_EQ(std::ranges::count(LogEntries(),
                               "//\r\nOperation is not allowed when the object is open.\r\n\r\n"),
            2);
}

TEST_F(DatabaseTest, WithoutAPathForItTheBackupIsTriedAllTheSame) {
  List({"a.sql"}, true);
  Script("a.sql", {"--taluLineByLine", "USE X"});
  Wizard other(machine.Parts);
  other.State = AtTheBuild();
  other.State.AppFolderPath = "C:";
  windows.Run([&] { other.Page<FrmSQLNonQuery>().Show(); });
  EXPECT_EQ(std::ranges::count(LogEntries(), "//\r\nInvalid procedure call or argument\r\n\r\n"), 2)
      << "the path, then the folder";
  EXPECT_TRUE(Statements().at(1).starts_with("IF  EXISTS"));
}

TEST_F(DatabaseTest, TheBackupScansTheCrossedSets) {
  Configure({Block("FreshDBSript", {"f"}), Block("DemoDBSript", {"d.sql"}),
             Block("UpgradeDBSript", {"u.sql"}), Block("DBSript", {"one"})});
  Put("SQLScript\\Demo\\d.sql", "--taluLineByLine\r\nUSE DemoDB\r\n");
  Put("SQLScript\\Upgrade\\u.sql", "--taluLineByLine\r\nUSE UpDB\r\n");
  machine.Server.Databases = {"DEMODB", "UPDB"};
  Install("OptServer", "OptUpgrade");
  ASSERT_EQ(Statements().size(), 3U);
  EXPECT_TRUE(Contains(Statements().at(1), "BACKUP DATABASE DemoDB"));
  EXPECT_EQ(Statements().back(), "USE UpDB");
}

}  // namespace
}  // namespace talu
