#include <gtest/gtest.h>

#include <chrono>
#include <random>

#include "RunningServer.h"
#include "Server.h"
#include "SqliteDatabase.h"
#include "runtime/TextFunctions.h"

namespace talu::standin {
namespace {

namespace fs = std::filesystem;

constexpr const char* kCreateSales =
    "CREATE DATABASE Sales ON PRIMARY (NAME = S, FILENAME = 'c:\\DATA\\Sales.mdf', SIZE = 10MB, "
    "FILEGROWTH = 10%) LOG ON (NAME = L, FILENAME = 'C:\\data\\sub\\..\\Sales_log.ldf')";

TEST(Login, ChecksNamePasswordAndDatabase) {
  const HostFolder folder;
  const RunningServer server(folder.Path);
  for (const int version : {DBVERSION_70, DBVERSION_71, DBVERSION_72, DBVERSION_74}) {
    TestClient client(server.Port());
    EXPECT_EQ(client.LogIn("SA", kTestPassword, "", version).Database, "master");
    EXPECT_EQ(client.Batch("SELECT 1, N'a', name FROM sys.databases WHERE 2.5 > 1").Summary(),
              "1,a,master");
    EXPECT_EQ(client.Batch("SELECT * FROM Nowhere").Summary(), "!208");
  }
  EXPECT_EQ(TestClient(server.Port()).LogIn("sa", "secret 1").Summary(), "!18456");
  const RawClient nobody(server.Port());  // the library would use what Windows knows of the user
  nobody.SendMessage(MessageType::Login, LoginPayload("", ""));
  EXPECT_TRUE(Contains(nobody.Receive(), std::string("\x18\x48\0", 3))) << "18456";
  EXPECT_EQ(TestClient(server.Port()).LogIn("sa", kTestPassword, "Nowhere").Summary(),
            "!4060;!18456");
  LoggedIn admin(server);
  EXPECT_EQ(admin.Batch("CREATE LOGIN lu WITH PASSWORD = N'p w', CHECK_POLICY = OFF").Summary(),
            "");
  EXPECT_EQ(admin.Batch("CREATE LOGIN LU WITH PASSWORD = N'p'").Summary(), "!15025");
  EXPECT_EQ(TestClient(server.Port()).LogIn("lu", "p w").Summary(), "");
  EXPECT_EQ(TestClient(server.Port()).LogIn("lu", "p").Summary(), "!18456");
  EXPECT_EQ(admin.Batch("DROP LOGIN lu DROP LOGIN lu").Summary(), "!15151");
  EXPECT_EQ(TestClient(server.Port()).LogIn("lu", "p w").Summary(), "!18456");
  for (const auto& record : server.Journal())
    EXPECT_EQ(record.dump().find("p w"), std::string::npos);
}

TEST(Drives, FollowPathsAsWindowsDoes) {
  const HostFolder folder;
  fs::create_directories(folder.Path / "Program Files" / "M\xC3\xBCller");
  std::ofstream(folder.Path / "Program Files" / "Old.mdf") << "x";
  Drives drives;
  EXPECT_THROW(drives.Add("C"), std::invalid_argument);
  EXPECT_THROW(drives.Add("C=" + (folder.Path / "nowhere").string()), std::invalid_argument);
  drives.Add("c=" + folder.Path.string());
  const struct {
    std::string Path;
    const char* Found;  // below the folder; empty: not to be had
    bool Exists;
  } cases[] = {
      {"C:\\PROGRAM FILES\\old.MDF", "Program Files/Old.mdf", true},
      {"c:/program files/New.mdf. ", "Program Files/New.mdf", false},
      {"C:\\program files \\m\xC3\x9CLLER\\a.mdf", "Program Files/M\xC3\xBCller/a.mdf", false},
      {"C:\\..\\..\\x\\..\\a.mdf", "a.mdf", false},
      {"C:\\nowhere\\a.mdf", "", false},
      {"C:\\Program Files", "", true},
      {"D:\\a.mdf", "", false},
      {"C:a.mdf", "", false},
      {"C:\\a|b.mdf", "", false},
      {std::string("C:\\a\0b.mdf", 10), "", false},
      {"\\\\server\\share\\a.mdf", "", false},
      {"", "", false},
      {"C:\\", "", false},
  };
  for (const auto& each : cases) {
    const FoundPath found = drives.Find(each.Path);
    const std::string expected = each.Found;
    EXPECT_EQ(found.FolderExists, !expected.empty()) << each.Path;
    EXPECT_EQ(found.SystemError.empty(), found.FolderExists) << each.Path;
    EXPECT_EQ(found.Exists, each.Exists) << each.Path;
    if (found.FolderExists) {
      EXPECT_EQ(found.File, folder.Path / expected);
    }
  }
}

TEST(Databases, StandAtTheirPaths) {
  const HostFolder folder;
  fs::create_directories(folder.Path / "c" / "Data" / "sub");
  const RunningServer server(folder.Path);
  LoggedIn client(server);
  EXPECT_EQ(client.Batch(kCreateSales).Summary(), "");
  EXPECT_TRUE(fs::exists(server.Data() / "Sales.mdf"));
  EXPECT_TRUE(fs::exists(server.Data() / "Sales_log.ldf"));
  const struct {
    const char* Batch;
    const char* Answer;
  } cases[] = {
      {"CREATE DATABASE sales", "!1801"},
      {"CREATE DATABASE b ON (NAME=b, FILENAME='C:\\Nowhere\\b.mdf')", "!5133;!1802"},
      {"CREATE DATABASE b ON (NAME=b, FILENAME='Z:\\Data\\b.mdf')", "!5133;!1802"},
      {"CREATE DATABASE b ON (NAME=b, FILENAME='b.mdf')", "!5133;!1802"},
      {"CREATE DATABASE b ON (NAME=b, FILENAME='C:\\Data\\SALES.MDF')", "!5170;!1802"},
      {"CREATE DATABASE b ON (NAME=b, FILENAME='C:\\Data\\b.mdf') LOG ON (NAME=l, "
       "FILENAME='C:\\x\\b.ldf')",
       "!5133;!1802"},
      {"CREATE DATABASE b ON (NAME=b)", "!102"},
      {"USE Sales CREATE TABLE t (a int) INSERT t VALUES (5)", ""},
      {"DROP DATABASE Sales", "!3702"},
      {"DROP DATABASE master", "!3708"},
      {"DROP DATABASE Nowhere DROP DATABASE IF EXISTS Nowhere", "!3701"},
      {"ALTER DATABASE Nowhere SET OFFLINE WITH ROLLBACK IMMEDIATE", "!5011;!5069"},
      {"ALTER DATABASE Sales SET RECOVERY SIMPLE, AUTO_CLOSE OFF WITH NO_WAIT", ""},
      {"ALTER DATABASE Sales SET UNHEARD ON", "!102"},
      {"ALTER DATABASE master SET OFFLINE", "!5058"},
  };
  for (const auto& each : cases)
    EXPECT_EQ(client.Batch(each.Batch).Summary(), each.Answer) << each.Batch;
  EXPECT_FALSE(fs::exists(server.Data() / "b.mdf"));
  EXPECT_EQ(client.Batch("USE Master").Database, "master");
  EXPECT_EQ(client.Batch("SELECT a FROM Sales..t").Summary(), "5");
  EXPECT_EQ(client.Batch("DROP DATABASE Sales").Summary(), "");
  EXPECT_TRUE(fs::is_empty(server.Data() / "sub"));
  EXPECT_EQ(std::distance(fs::directory_iterator(server.Data()), {}), 1);  // sub alone
}

TEST(Databases, OfflineEndsOtherSessionsAndLeavesTheFilesWhenDropped) {
  const HostFolder folder;
  const RunningServer server(folder.Path);
  LoggedIn client(server);
  client.Batch("CREATE DATABASE Sales ON (NAME=S, FILENAME='C:\\Data\\Sales.mdf')");
  const RawClient other(server.Port());
  EXPECT_TRUE(other.LogIn(LoginPayload("sa", kTestPassword, "Sales")));
  other.SendMessage(MessageType::Batch,
                    BatchPayload("CREATE TABLE t (a int) BEGIN TRAN INSERT t VALUES (1)"));
  EXPECT_NE(other.Receive(), "");
  EXPECT_EQ(client.Batch("ALTER DATABASE Sales SET OFFLINE").Summary(), "!5061;!5069");
  EXPECT_EQ(client.Batch("ALTER DATABASE  Sales SET OFFLINE WITH ROLLBACK IMMEDIATE").Summary(),
            "");
  EXPECT_EQ(other.Receive(), "");
  EXPECT_EQ(client.Batch("USE Sales").Summary(), "!942");
  EXPECT_EQ(client.Batch("BACKUP DATABASE Sales TO DISK = 'C:\\Data\\s.bkp'").Summary(),
            "!942;!3013");
  EXPECT_EQ(client.Batch("SELECT state_desc FROM sys.databases WHERE name = 'sales'").Summary(),
            "OFFLINE");
  EXPECT_EQ(
      client.Batch("ALTER DATABASE Sales SET ONLINE SELECT COUNT(*) FROM Sales.dbo.t").Summary(),
      "0");
  // One's own current database goes offline as well: the session is in master then.
  EXPECT_EQ(
      client.Batch("USE Sales ALTER DATABASE Sales SET OFFLINE WITH ROLLBACK IMMEDIATE").Database,
      "master");
  EXPECT_EQ(client.Batch("DROP DATABASE  Sales").Summary(), "");
  EXPECT_TRUE(fs::exists(server.Data() / "Sales.mdf"));
}

TEST(Backup, IsACopyThatSqliteOpens) {
  const HostFolder folder;
  const RunningServer server(folder.Path);
  LoggedIn client(server);
  client.Batch("CREATE DATABASE Sales");
  client.Batch("USE Sales CREATE TABLE t (a int) INSERT t VALUES (1), (2)");
  const std::string statement =
      "IF  EXISTS (SELECT name FROM sys.databases WHERE name = N'sales') BACKUP DATABASE sales TO  "
      "DISK = N'C:\\Data\\Talu_sales_7_3_2012_9_5.bkp ' WITH NOFORMAT, INIT,  NAME = N'sales-Full "
      "Database Backup', SKIP, NOREWIND, NOUNLOAD,  STATS = 10";
  for (int round = 0; round < 2; ++round) {
    const Answer answer = client.Batch(statement);
    EXPECT_EQ(answer.Summary(), "");
    EXPECT_EQ(answer.Messages.back().Number, 3014);
  }
  SqliteDatabase copy(server.Data() / "Talu_sales_7_3_2012_9_5.bkp", "copy", [] { return false; });
  SqliteStatement sum(copy, "SELECT sum(a) FROM t", "");
  ASSERT_TRUE(sum.Step());
  EXPECT_EQ(sqlite3_column_int(sum.Handle(), 0), 3);
  const struct {
    const char* Batch;
    const char* Answer;
  } cases[] = {
      {"BACKUP DATABASE Nowhere TO DISK = 'C:\\Data\\n.bkp'", "!911;!3013"},
      {"BACKUP DATABASE Sales TO DISK = 'C:\\Nowhere\\n.bkp' WITH INIT", "!3201;!3013"},
      {"BACKUP DATABASE Sales TO DISK = 'C:\\Data\\Talu_sales_7_3_2012_9_5.bkp'", "!50000;!3013"},
      {"IF EXISTS (SELECT name FROM sys.databases WHERE name = N'No') BACKUP DATABASE No TO DISK = "
       "'C:\\n'",
       ""},
  };
  for (const auto& each : cases)
    EXPECT_EQ(client.Batch(each.Batch).Summary(), each.Answer) << each.Batch;
}

TEST(Server, GoesOnWhereItEnded) {
  const HostFolder folder;
  {
    const RunningServer server(folder.Path);
    LoggedIn client(server);
    client.Batch("CREATE DATABASE [My Sales] CREATE LOGIN lu WITH PASSWORD = 'pw'");
    client.Batch("USE [My Sales] CREATE TABLE t (a int) INSERT t VALUES (7)");
    EXPECT_THROW(RunningServer(folder.Path), std::runtime_error);  // one server a folder
  }
  const RunningServer server(folder.Path);
  TestClient client(server.Port());
  EXPECT_EQ(client.LogIn("lu", "pw", "my sales").Database, "My Sales");
  EXPECT_EQ(client.Batch("SELECT a FROM t").Summary(), "7");
}

TEST(Mishaps, HappenAsTold) {
  using Effect = Mishaps::Effect;
  Mishaps mishaps;
  mishaps.Add(Effect::Fail, "2=1234:Told so", true);
  mishaps.Add(Effect::Fail, "CREATE TABLE bad");
  mishaps.Add(Effect::Cut, "cut here");
  mishaps.Add(Effect::Delay, "slow=60000");
  EXPECT_THROW(mishaps.Add(Effect::Fail, "x", true), std::invalid_argument);
  EXPECT_THROW(mishaps.Add(Effect::Cut, "0", true), std::invalid_argument);
  EXPECT_THROW(mishaps.Add(Effect::Delay, "slow"), std::invalid_argument);
  const HostFolder folder;
  const RunningServer server(folder.Path, mishaps);
  LoggedIn client(server);
  EXPECT_EQ(client.Batch("SELECT 1").Summary(), "1");
  const Answer told = client.Batch("SELECT 2");
  EXPECT_EQ(told.Messages.at(0).Text, "Told so");
  EXPECT_EQ(told.Messages.at(0).Number, 1234);
  EXPECT_EQ(client.Batch("CREATE TABLE bad (a int)").Summary(), "!50000");
  // An attention ends the wait, and the session goes on.
  client.Cancel("SELECT 'slow'", 0);
  EXPECT_EQ(client.Batch("SELECT 3").Summary(), "3");
  // It ends a statement that runs, too.
  client.Cancel("WITH r AS (SELECT 1 AS n UNION ALL SELECT n + 1 FROM r) SELECT COUNT(*) FROM r",
                50);
  EXPECT_TRUE(client.Batch("SELECT 'cut here'").IsClosed);
  const auto journal = server.Journal();
  EXPECT_EQ(journal.at(1)["text"], "SELECT 1");
  EXPECT_EQ(journal.at(2)["error"]["number"], 1234);
  EXPECT_EQ(journal.at(4)["ending"], "cancelled");
  EXPECT_EQ(journal.at(6)["ending"], "cancelled");
  EXPECT_EQ(journal.at(7)["ending"], "cut");
  EXPECT_EQ(journal.at(7)["number"], 7);
}

TEST(Journal, KeepsBatchesWhole) {
  const HostFolder folder;
  const RunningServer server(folder.Path);
  const std::string batch = "\r\nPRINT 'a\"\\\n'\r\n-- \xE2\x82\xAC\r\n";
  LoggedIn(server).Batch(batch);
  EXPECT_EQ(server.Journal().at(1)["text"], batch);
}

TEST(Server, ServesSeveralSessionsAtOnce) {
  const HostFolder folder;
  const RunningServer server(folder.Path);
  LoggedIn(server).Batch("CREATE TABLE t (a int)");
  std::vector<std::thread> clients;
  clients.reserve(8);
  for (int i = 0; i < 8; ++i) {
    clients.emplace_back([&server] {
      LoggedIn client(server);
      for (int n = 0; n < 50; ++n) EXPECT_EQ(client.Batch("INSERT t VALUES (1)").Summary(), "");
    });
  }
  for (std::thread& client : clients) client.join();
  EXPECT_EQ(LoggedIn(server).Batch("SELECT COUNT(*) FROM t").Summary(), "400");
}

TEST(Server, OutlivesBadClients) {
  const HostFolder folder;
  const RunningServer server(folder.Path);
  std::mt19937 random(2);
  const std::string login = LoginPayload("sa", kTestPassword);
  for (int i = 0; i < 60; ++i) {
    const RawClient client(server.Port());
    std::string noise(random() % 200, '\0');
    for (char& byte : noise) byte = static_cast<char>(random());
    switch (i % 4) {
      case 0:
        client.Send(noise);
        break;
      case 1:
        client.SendMessage(MessageType::Login, login.substr(0, random() % login.size()));
        EXPECT_EQ(client.Receive(), "");
        break;
      case 2:
        EXPECT_TRUE(client.LogIn(login));
        // It does not wait for the answer.
        client.SendMessage(MessageType::Batch, BatchPayload("SELECT name FROM sys.databases"));
        break;
      default:
        EXPECT_TRUE(client.LogIn(login));
        client.SendMessage(MessageType::Batch, noise.substr(0, 3));
        EXPECT_EQ(client.Receive(), "");
        break;
    }
  }
  const RawClient before(server.Port());
  before.SendMessage(MessageType::Batch, BatchPayload("SELECT 1"));  // without a login
  EXPECT_EQ(before.Receive(), "");
  const RawClient caller(server.Port());
  EXPECT_TRUE(caller.LogIn(login));
  caller.SendMessage(MessageType::Attention, "");  // with nothing to end
  EXPECT_TRUE(Contains(caller.Receive(), "\xFD\x20"));
  caller.SendMessage(MessageType::Procedure, BatchPayload("").append("\xFF\xFF\x0A\0", 4));
  EXPECT_TRUE(Contains(caller.Receive(), Utf16("find stored procedure 'sp_executesql'")));
  LoggedIn client(server);
  EXPECT_EQ(client.Batch("SELECT 1").Summary(), "1");
}

}  // namespace
}  // namespace talu::standin
