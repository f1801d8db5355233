#include <algorithm>
#include <array>

#include "Pack.h"
#include "pages/FrmSQLNonQuery.h"

namespace talu {
namespace {

const char* const kAlreadyOpen = "//|Operation is not allowed when the object is open.||";
const char* const kFileNotFound = "//|File not found||";

class DatabaseTest : public PackTest {
 protected:
  DatabaseTest() {
    machine.Disk.MakeFolders("C:\\Progs");
    List("a.sql");
  }

  /// The fresh scripts of the pack; the backup scans them when `scanned`.
  void List(const std::string& names, bool scanned = false) {
    Configure({"FreshDBSript=" + names, "DemoDBSript=d.sql", "UpgradeDBSript=u.sql",
               "DBSript=" + (scanned ? names : "")});
  }
  /// Its lines, which "|" divides.
  void Script(const std::string& name, const std::string& lines) {
    Put("SQLScript\\Fresh\\" + name, Lines(lines));
  }
  void Build() { Install("OptServer"); }
  /// A second showing of the page, whose Back the first build has disabled. What was sent and
  /// logged before is no longer of interest.
  void BuildAgain() { Show(wizard); }
  /// The page alone, after what the pages before it leave.
  std::unique_ptr<Wizard> BuildAlone(const Machine& parts,
                                     const std::string& appFolder = "C:\\Progs\\App") {
    machine.Disk.MakeFolders("C:\\Progs\\App");
    auto other = std::make_unique<Wizard>(parts);
    other->State.AppFolderPath = appFolder;
    other->State.AppFolderName = "App";
    other->State.DBFolderPath = "C:\\Progs\\App\\Data";
    other->State.ServerName = "SRV1";
    other->State.LogFileNumber = 1;
    other->State.UninstallFileNumber = 2;
    Show(*other);
    return other;
  }
  /// What the last build sent, and what it logged.
  Texts Sent() { return From(Statements(), sent_); }
  Texts Logged() { return From(LogEntries(), logged_); }
  void FailOn(const std::string& text) {
    machine.Server.FailStatements(text, StatementError("Told to fail."));
  }

  static Texts From(const Texts& list, std::size_t start) {
    return {list.begin() + static_cast<std::ptrdiff_t>(start), list.end()};
  }
  /// What the rollback says to drop a database.
  static Texts Dropped(const std::string& name) {
    return {"USE Master", "ALTER DATABASE  " + name + " SET OFFLINE WITH ROLLBACK IMMEDIATE",
            "DROP DATABASE  " + name};
  }
  static std::string Create(const std::string& name) {
    return "CREATE DATABASE " + name + " ON (FILENAME='C:\\Old\\" + name + ".mdf')";
  }

  const std::string failed = "[Microsoft][ODBC SQL Server Driver][SQL Server]Told to fail.";

 private:
  void Show(Wizard& which) {
    sent_ = Statements().size();
    logged_ = LogEntries().size();
    windows.Run([&] { which.Page<FrmSQLNonQuery>().Show(); });
  }

  std::size_t sent_ = 0;
  std::size_t logged_ = 0;
};

TEST_F(DatabaseTest, EachStatementThatCutsABatchFailsByItself) {
  const std::pair<const char*, int> cases[] = {
      {"CREATE DATABASE X ON (FILENAME='x.mdf')", 3},
      {"CREATE DATABASE X ON (FILENAME='C:\\Old\\x.MDF')", 2},
      {"CREATE DATABASE FILENAME='C:\\Old\\x.mdf'", 1},
  };
  Build();  // the folders
  for (const auto& [batch, errors] : cases) {
    Script("a.sql", std::string("--taluGO|") + batch + "|GO");
    machine.Server.Databases.clear();
    BuildAgain();
    const auto isOne = [](const std::string& entry) {
      return entry.starts_with("//|Invalid procedure call or argument|");
    };
    EXPECT_EQ(std::ranges::count_if(Logged(), isOne), errors) << batch;
  }
}

TEST_F(DatabaseTest, EveryEndingInItsOrder) {
  const std::string connect =
      "connect driver={SQL Server};server=SRV1;uid=sa;pwd=secret;database=Master";
  const std::string mkdir = "mkdir C:\\Progs\\TA-LU\\App BackUp";
  const std::string unreachable =
      "log //|[Microsoft][ODBC SQL Server Driver][DBNETLIB]SQL Server does not exist or access "
      "denied.";
  const std::string unconnected =
      "log //|The connection cannot be used to perform this operation. It is either closed or "
      "invalid in this context.";
  const std::string missing = "log //|File not found";
  const std::string refused = "Database authentication failed, Can not continue ...";
  const std::string bad =
      "--taluGO|" + Create("Sales") + "|GO|CREATE LOGIN Seller WITH x|GO|BAD|GO|AFTER|GO";
  const auto closing = [](const std::string& status) {
    return Texts{"LblMsg " + status, "log " + status};
  };
  const Texts done = All({{"disconnect"},
                          closing("Database creation completed successfully..."),
                          {"record UsrName:sa", "record PsWord:secret"}});
  const Texts badStory = {mkdir,
                          connect,
                          connect,
                          "sql |" + Replace(Create("Sales"), "C:\\Old", app + "\\Data") + " 300",
                          "sql |CREATE LOGIN Seller WITH x 300",
                          "sql |BAD 300 FAILED",
                          "log //|" + failed + "||BAD",
                          "sql |AFTER 300",
                          "sql USE Master 300",
                          "sql ALTER DATABASE  Sales SET OFFLINE WITH ROLLBACK IMMEDIATE 300",
                          "sql DROP DATABASE  Sales 300",
                          "sql USE Master 300",
                          "sql DROP LOGIN  Seller 300"};
  enum Lack { Nothing, Server, Configuration };
  // `files` are open at the end, log and record among them.
  const auto ends = [&](const char* what, const std::string& a, const std::string& b, bool scanned,
                        Lack lack, const Texts& rest, int files) {
    SCOPED_TRACE(what);
    Stage stage;
    stage.machine.Disk.MakeFolders("C:\\Progs");
    stage.Configure({"FreshDBSript=a.sql|b.sql", scanned ? "DBSript=a.sql|b.sql" : "DBSript="});
    stage.Put("SQLScript\\Fresh\\a.sql", Lines(a));
    stage.Put("SQLScript\\Fresh\\b.sql", Lines(b));
    stage.machine.Server.FailStatements("BAD", StatementError("Told to fail."));
    stage.GoToLocation("OptFresh", "OptServer", "C:\\Progs");
    stage.machine.Server.Reachable = lack == Nothing;
    if (lack == Configuration) stage.machine.Disk.DeleteFile("D:\\Pack\\AppCfg.txt", false);
    stage.windows.Click("CmdNext");
    Texts story = stage.Story("show FrmSQLNonQuery");
    story.erase(std::ranges::find(story, "hide FrmSQLNonQuery"), story.end());
    std::erase_if(story, [](const std::string& line) { return line.starts_with("ShpProgBar "); });
    for (std::string& line : story)
      if (line.starts_with("sql IF  EXISTS")) line = "backup";
    EXPECT_EQ(story, All({{"CmdPrev false", "LblMsg Building Database. Please wait....",
                           "log Building Database Started...."},
                          rest}));
    EXPECT_EQ(stage.wizard.TextFiles.FreeFile(), files + 1);
  };
  ends("success", "--taluGO|CREATE LOGIN Seller WITH x|GO", "--taluLineByLine|SELECT 1", true,
       Nothing,
       All({{mkdir, connect, connect, "sql |CREATE LOGIN Seller WITH x 300", "sql SELECT 1 300"},
            done,
            {"record DBNames:0", "record DBLogins:1, Seller"}}),
       2);
  ends("a name that the backup cannot cut", "--taluGO|CREATE DATABASE Sales|GO|USE master|GO",
       "--taluGO", true, Nothing,
       All({{"log //|Invalid procedure call or argument||CREATE DATABASE Sales", mkdir, connect,
             "sql USE Master", "backup", connect, "sql |CREATE DATABASE Sales 300",
             "sql |USE master 300"},
            done,
            {"record DBNames:0", "record DBLogins:0"}}),
       2);
  ends("a batch fails", bad, "--taluGO", false, Nothing,
       All({badStory,
            {"disconnect"},
            closing("Database creation not finished..."),
            {"msgbox " + failed}}),
       2);
  ends("malformed, after a batch that fails", bad, "SELECT 1", false, Nothing,
       All({badStory, closing("Script format is not correct...."), {"msgbox " + failed}}), 4);
  const Texts unreached = {connect + " FAILED", unreachable};
  ends("no server", bad, "", false, Server,
       All({{mkdir}, unreached, {unconnected}, unreached, closing(refused)}), 3);
  ends("no configuration either", bad, "", false, Configuration,
       All({{missing, mkdir}, unreached, {unconnected, missing}, unreached, closing(refused)}), 2);
}

TEST_F(DatabaseTest, EveryBatchAndScannedLineLetsEventsThroughAndAdvancesTheBar) {
  List("a.sql|b.sql", true);
  // The name in the first batch cannot be cut.
  Script("a.sql", "--taluGO|CREATE DATABASE Sales|GO|CREATE LOGIN Seller WITH x|GO");
  Script("b.sql", "--taluLineByLine|SELECT 1");
  NoteEvents();
  Build();
  Texts story = Story("log Building");
  story.erase(std::ranges::find(story, "hide FrmSQLNonQuery"), story.end());
  std::erase_if(story, [](const std::string& line) {
    return line != "events" && !line.starts_with("sql ") && !line.starts_with("ShpProgBar ");
  });
  EXPECT_EQ(Joined(story), R"(
ShpProgBar 441
events
ShpProgBar 442
events
events
ShpProgBar 443
events
events
sql |CREATE DATABASE Sales 300
events
ShpProgBar 444
events
sql |CREATE LOGIN Seller WITH x 300
events
ShpProgBar 445
events
sql SELECT 1 300
events
ShpProgBar 446
ShpProgBar 5860
)");
}

TEST_F(DatabaseTest, AfterAMalformedScriptTheNextBuildBeginsOutsideOfAnyBlock) {
  Script("a.sql", "SELECT 1|--taluLineByLine|LEFT IN THE OPEN FILE");
  Build();
  List("none.sql|a.sql");
  Script("a.sql", "--taluGO|SELECT 2|GO");
  BuildAgain();
  EXPECT_EQ(Sent(), Texts{"|SELECT 2"});
  // The connections of the first one and of its backup are still open.
  EXPECT_EQ(Logged(),
            (Texts{"Building Database Started....", kAlreadyOpen, kAlreadyOpen, kAlreadyOpen,
                   kAlreadyOpen, kFileNotFound, "Database creation not finished..."}));
}

TEST_F(DatabaseTest, TheRollbackWalksTheListsAsTheyAreAndNoFurther) {
  machine.Server.AcceptAll = true;
  FailOn("BAD");
  Script("a.sql", "--taluGO|" + Create("A") + "|GO|CREATE LOGIN L WITH x|GO|BAD|GO");
  Build();
  Script("a.sql", "--taluGO|" + Create("B") + "|GO|" + Create("C") +
                      "|GO|CREATE LOGIN M WITH x|GO|CREATE LOGIN|GO|CREATE LOGIN N|GO|BAD|GO");
  BuildAgain();
  EXPECT_EQ(From(Sent(), 6), All({Dropped("A"),
                                  Dropped("B"),
                                  {"USE Master", "DROP LOGIN  L", "USE Master", "DROP LOGIN  M"}}));
  // The names of two logins could not be cut, yet they are counted.
  EXPECT_EQ(windows.Messages().back(), "Subscript out of range");
}

TEST_F(DatabaseTest, TheEntryOfTheBackupThatFailsIsAnErrorOfTheBuild) {
  const auto stage = PlayFailing("Path not found", 0, [](PackTest& play) {
    play.machine.Disk.MakeFolders("C:\\Progs");
    play.Configure({"FreshDBSript=none.sql", "DBSript=one"});
    play.Install("OptServer");
  });
  EXPECT_EQ(stage->windows.VisibleForm(), "FrmSQLNonQuery");
  EXPECT_EQ(stage->LogEntries().at(4), "//|Disk full||");
  EXPECT_EQ(stage->machine.Journal.Texts("connect", "text").size(), 2U)
      << "the backup's is not made";
}

TEST_F(DatabaseTest, BehindTheLast16BitEntryTheRollbackOverflows) {
  std::string text = "--taluGO|BAD|GO";
  for (int i = 0; i < 32767; ++i) text += "|CREATE LOGIN  X |GO";
  Script("a.sql", text);
  FailOn("BAD");
  machine.Server.AcceptAll = true;
  Build();
  EXPECT_EQ(windows.Messages(), Texts{"Overflow"});
}

TEST_F(DatabaseTest, WithoutServerOrFolderNothingIsRunAndThePageStays) {
  Script("a.sql", "--taluGO|SELECT 1|GO");
  Build();
  machine.Server.Reachable = false;
  BuildAgain();
  EXPECT_EQ(windows.VisibleForm(), "FrmSQLNonQuery") << "the success was another build's";
  machine.Server.Reachable = true;
  wizard.State.DBFolderPath = "";
  BuildAgain();
  EXPECT_EQ(LogEntries().back(), "//|||");
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
  Texts Calls;

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
  List("a.sql", true);
  Script("a.sql", "--taluLineByLine|USE X");
  for (const char* call : {"text", "open", "close", "state", "bind", "time-out", "execute"}) {
    SCOPED_TRACE(call);
    Refusing data(call);
    BuildAlone(With(machine, data));
    for (std::string& made : data.Calls) made = made.substr(0, 14);
    Texts calls = {"text",    "text",           "open",           "bind",    "statement USE ",
                   "execute", "statement IF  ", "execute",        "open",    "state",
                   "bind",    "time-out",       "statement USE ", "execute", "close"};
    if (std::string(call) == "state") calls.resize(10);  // not known to be open: closed
    EXPECT_EQ(data.Calls, calls);
  }
}

TEST_F(DatabaseTest, ALineWhoseReadingFailsIsNotTakenInPart) {
  const std::string blanks(70000, ' ');
  Script("a.sql", "--taluLineByLine|USE A" + blanks + "|USE B");
  machine.Server.AcceptAll = true;
  // The second of two reads without anything between fails: of the backup's scan, of the build,
  // and, where the configuration has a long line, of the build's list.
  struct Case {
    const char* what;
    Texts blocks;
    int pair;
    std::size_t statements;
    int missing;
  };
  const std::string list = "FreshDBSript=a.sql";
  for (const Case& test : {Case{"backup", {list, "DBSript=a.sql"}, 1, 4, 0},
                           {"build", {list}, 1, 1, 0},
                           {"list", {list + "|none" + blanks}, 2, 2, 1},
                           {"key of another list", {"Other" + blanks + "=a.sql", list}, 1, 2, 0}}) {
    SCOPED_TRACE(test.what);
    Configure(test.blocks);
    std::string last;
    int pairs = test.pair;
    machine.Journal.OnRequest = [&](int, const std::string& kind) {
      if (std::exchange(last, kind) == "read" && kind == "read" && --pairs == 0)
        throw RuntimeError(error::kDeviceIO);
    };
    BuildAlone(machine.Parts);
    machine.Journal.OnRequest = nullptr;
    EXPECT_EQ(Sent().size(), test.statements);
    EXPECT_EQ(std::ranges::count(Logged(), kFileNotFound), test.missing);
  }
}

TEST_F(DatabaseTest, TheBarGrowsToItsLimitAndFallsBack) {
  std::string lines = "--taluLineByLine";
  for (int i = 0; i < 600; ++i) lines += "|X";
  Script("a.sql", lines);
  List("a.sql", true);
  Build();
  List("a.sql");
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

TEST_F(DatabaseTest, ABackupThatCannotCountItsScriptsScansAsManyAsBefore) {
  List("a.sql", true);
  Script("a.sql", "--taluGO|GO");
  Build();
  Script("a.sql", "--taluGO|USE Other|GO");
  machine.Journal.FailRequest(machine.Journal.Requests() + 4, RuntimeError(error::kDeviceIO));
  BuildAgain();
  EXPECT_TRUE(Contains(Sent().at(1), "BACKUP DATABASE Other"));
  EXPECT_EQ(std::ranges::count(Logged(), kAlreadyOpen), 2) << "since the first time";
}

TEST_F(DatabaseTest, WithoutAPathForItTheBackupIsTriedAllTheSame) {
  List("a.sql", true);
  Script("a.sql", "--taluLineByLine|USE X");
  BuildAlone(machine.Parts, "C:");
  EXPECT_EQ(std::ranges::count(Logged(), "//|Invalid procedure call or argument||"), 2)
      << "the path, then the folder";
  EXPECT_TRUE(Statements().at(1).starts_with("IF  EXISTS"));
}

TEST_F(DatabaseTest, TheBackupScansTheCrossedSets) {
  using Case = std::array<const char*, 3>;
  for (const auto& [type, scanned, built] :
       {Case{"OptUpgrade", "DemoDB", "UpDB"}, Case{"OptDemo", "UpDB", "DemoDB"}}) {
    Stage stage;
    stage.Configure({"FreshDBSript=f", "DemoDBSript=d.sql", "UpgradeDBSript=u.sql", "DBSript=one"});
    stage.Put("SQLScript\\Demo\\d.sql", Lines("--taluLineByLine|USE DemoDB"));
    stage.Put("SQLScript\\Upgrade\\u.sql", Lines("--taluLineByLine|USE UpDB"));
    stage.machine.Server.Databases = {"DEMODB", "UPDB"};
    stage.machine.Disk.MakeFolders("C:\\Progs");
    stage.Install("OptServer", type);
    const Texts statements = stage.Statements();
    ASSERT_EQ(statements.size(), 3U) << type;
    EXPECT_TRUE(Contains(statements.at(1), std::string("BACKUP DATABASE ") + scanned)) << type;
    EXPECT_EQ(statements.back(), std::string("USE ") + built);
  }
}

}  // namespace
}  // namespace talu
