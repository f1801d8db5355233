#include <gtest/gtest.h>

#include "RunningServer.h"
#include "runtime/TextFunctions.h"

namespace talu::standin {
namespace {

struct Case {
  const char* Batch;
  /// As Answer::Summary gives it.
  const char* Answer;
};

/// Sends the batches one after another, in one session, and compares every answer.
void Play(TestClient& client, const std::vector<Case>& cases) {
  for (const Case& each : cases)
    EXPECT_EQ(client.Batch(each.Batch).Summary(), each.Answer) << each.Batch;
}

TEST(Statements, TablesAndRows) {
  const HostFolder folder;
  const RunningServer server(folder.Path);
  LoggedIn client(server);
  Play(client,
       {
           {"CREATE\x1f"
            "DATABASE\x01Sales",
            ""},
           {"USE [Sales]", ""},
           {"CREATE TABLE [dbo].[Customer](\r\n\t[Id] [int] IDENTITY(10,1) NOT NULL,\r\n"
            "[Name] [nvarchar](10) COLLATE Latin1_General_CI_AS NOT NULL, Amount decimal(10, 2) "
            "NULL "
            "CONSTRAINT DF_A DEFAULT ((0)), Since datetime DEFAULT GETDATE(),\r\n"
            "CONSTRAINT [PK_Customer] PRIMARY KEY CLUSTERED ([Id] ASC) WITH (PAD_INDEX = OFF) ON "
            "[PRIMARY]"
            ") ON [PRIMARY]",
            ""},
           // The identity is left out, with and without a column list; DEFAULT fills the rest.
           {"INSERT INTO [dbo].[Customer] ([Name]) VALUES (N'O''Brien'), (N'\xC3\x9Cnal')", ""},
           {"INSERT Customer VALUES ('third', 2.5, '20120307')", ""},
           {"SELECT Id, Name, Amount, LEN(Since) FROM Sales.dbo.Customer ORDER BY [Customer].[Id]",
            "10,O'Brien,0,23;11,\xC3\x9Cnal,0,23;12,third,2.5,8"},
           {"SELECT Id FROM customer WHERE NAME = 'THIRD'", "12"},
           {"SELECT TOP 1 Name FROM Customer ORDER BY Id DESC; SELECT COUNT(*) AS [n] FROM "
            "dbo.Customer",
            "third;3"},
           {"INSERT INTO Customer (Id, Name) VALUES (1, 'x')", "!544"},
           {"SET IDENTITY_INSERT dbo.Customer ON INSERT INTO Customer (Id, Name) VALUES (1, 'x') "
            "SET IDENTITY_INSERT dbo.Customer OFF",
            ""},
           {"UPDATE dbo.Customer SET Amount = Amount + 1, Name = Name + N'!' WHERE Id = 1 "
            "SELECT Name, Amount, @@ROWCOUNT FROM Customer WHERE Id = 1",
            "x!,1,1"},
           // A failed statement does not end the batch, except where the real server ends it too.
           {"INSERT INTO Customer (Name) VALUES (NULL) PRINT N'on'", "!515;i0:on"},
           {"INSERT INTO Customer (Name) VALUES ('longer than 10')", "!8152"},
           {"INSERT INTO Customer (Name, Amount) VALUES ('x', 'abc')", "!8114"},
           {"SET IDENTITY_INSERT Customer ON; INSERT INTO Customer (Id, Name) VALUES (1, 'y')",
            "!2627"},
           {"SELECT * FROM Nowhere PRINT 'not reached'", "!208"},
           {"SELECT Nothing FROM Customer", "!207"},
           {"INSERT INTO Customer (Name, Amount) VALUES ('x')", "!109"},
           {"INSERT INTO Customer VALUES ('x')", "!213"},
           {"SELECT UNHEARD(1)", "!50000"},
           {"SELECT 1 FROM INFORMATION_SCHEMA.ROUTINES", "!50000"},
           {"SELECT name FROM SYS.dm_os_nodes", "!50000"},
           {"SELECT TOP (1) table_name FROM Sales.INFORMATION_SCHEMA.TABLES", "Customer"},
           {"CREATE TABLE customer (a int)", "!2714"},
           {"CREATE TABLE T2 (a whatever)", "!2715"},
           {"DROP TABLE Nowhere PRINT 'on'", "!3701;i0:on"},
           {"CREATE TABLE Orders (No int NOT NULL, Line smallint, Customer int REFERENCES Customer "
            "(Id), "
            "Note nvarchar(max), Img varbinary(max), PRIMARY KEY (No, Line))",
            ""},
           {"INSERT Orders VALUES (1, 1, 1, N'n', 0x00FF), (1, 2, NULL, NULL, NULL)", ""},
           {"INSERT Orders (No, Line) VALUES (1, 2)", "!2627"},
           {"INSERT Orders (No, Line, Customer) VALUES (2, 1, 77)", "!547"},
           {"DELETE Customer WHERE Id = 1", "!547"},
           {"CREATE UNIQUE NONCLUSTERED INDEX IX ON dbo.Orders (Customer ASC) INCLUDE (Note) WITH "
            "(SORT_IN_TEMPDB = OFF)",
            ""},
           {"CREATE INDEX IX ON Customer (Name) DROP INDEX IX ON Customer", ""},
           {"ALTER TABLE Orders ADD Extra int NULL, Colour nvarchar(5) NOT NULL DEFAULT 'red'", ""},
           {"IF EXISTS (SELECT * FROM sys.columns WHERE object_id = OBJECT_ID(N'[dbo].[Orders]') "
            "AND name = 'Extra') "
            "ALTER TABLE Orders DROP COLUMN Extra ELSE PRINT 'gone'",
            ""},
           {"SELECT * FROM Orders WHERE Line = 2", "1,2,NULL,NULL,NULL,red"},
           {"CREATE VIEW dbo.V AS SELECT Name FROM Customer UNION ALL SELECT N'z'", ""},
           {"SELECT COUNT(*) FROM V WHERE Name > 'o'", "5"},
           {"DELETE FROM Orders TRUNCATE TABLE Orders SELECT COUNT(*) FROM Orders DROP VIEW V DROP "
            "TABLE Orders",
            "0"},
       });
  EXPECT_EQ(client.Batch("UPDATE Customer SET Amount = 1").Counts, std::vector<int>{4});
  EXPECT_TRUE(client.Batch("SET NOCOUNT ON UPDATE Customer SET Amount = 1").Counts.empty());
}

TEST(Statements, ExpressionsAndControl) {
  const HostFolder folder;
  const RunningServer server(folder.Path);
  LoggedIn client(server);
  Play(
      client,
      {
          {"", ""},
          {"-- nothing\r\n/* nor /* here */ */", ""},
          {"PRINT 'a' + N'b' + CAST(1 AS varchar(5)) + 'it''s'", "i0:ab1it's"},
          {"SELECT 1 + 2, 7 / 2, 'x', NULL, ISNULL(NULL, 4), CONVERT(varchar(20), 12, 101)",
           "3,3,x,NULL,4,12"},
          {"SELECT CASE WHEN 1 = 1 THEN 'y' ELSE 'n' END SELECT 'next'", "y;next"},
          {"IF 1 = 2 SELECT 'a' ELSE IF 2 = 2 BEGIN SELECT 'b'; SELECT 'c' END ELSE SELECT 'd'",
           "b;c"},
          {"IF NOT EXISTS (SELECT name FROM sys.databases WHERE name = N'MASTER') PRINT 'no' "
           "SELECT 1",
           "1"},
          {"IF DB_ID(N'Nowhere') IS NULL AND EXISTS (SELECT 1 FROM master.dbo.sysdatabases) SELECT "
           "'ok'",
           "ok"},
          {"IF CASE WHEN 1 = 1 THEN 1 ELSE 2 END = 1 SELECT 'one'", "one"},
          {"SELECT N'\xE2\x82\xAC \xF0\x9F\x98\x80'", "\xE2\x82\xAC \xF0\x9F\x98\x80"},
          {"SELECT CHARINDEX('B', 'abc'), DB_NAME(), SUSER_SNAME()", "2,master,sa"},
          {"SELECT 'a' AS x, NCHAR(98) + NCHAR(99) + N'd', -$2.50", "a,bcd,-2.5"},
          {"DECLARE @a int = 2, @b nvarchar(9) SELECT @b = 'x' SET @a = @a + 1 SELECT @a, @b",
           "3,x"},
          {"CREATE TYPE Code FROM nvarchar(4)", ""},
          {"CREATE TABLE odd (c [dbo].[Code], d double precision, e datetime CHECK (e < "
           "GETDATE()), x xml (CONTENT dbo.S), f float(24))",
           ""},
          {"INSERT odd (c, d, e) VALUES ('x', 1.5, '2001') CREATE INDEX i ON odd (c) WHERE (c IS "
           "NOT NULL) "
           "SELECT d FROM odd WHERE OBJECT_ID('odd', 'U') IS NOT NULL",
           "1.5"},
          {"EXEC sp_executesql N'SELECT 5' EXEC ('SELECT ''six''')", "5;six"},
          // Syntax errors: nothing of the batch is carried out.
          {"SELECT 1 FROB", "1"},  // an alias
          {"SELECT 1; FROB the thing", "!102"},
          {"PRINT 'a' GO", "!102"},
          {"RESTORE DATABASE x FROM DISK = 'y'", "!50000"},
          {"SELECT (1", "!102"},
          {"SELECT 1)", "!102"},
          {"SELECT 'open", "!105"},
          {"SELECT 1 /* open", "!113"},
          {"SELECT @x", "!137"},
          {"DROP DATABASE", "!102"},
          {"SELECT 1 LIMIT 1", "!50000"},
          {"EXEC sp_who", "!50000"},
          {"EXEC who", "!2812"},
          {"BEGIN SELECT 1", "!102"},
          {"SET ANSI_NULLS ON SET QUOTED_IDENTIFIER OFF SELECT 1", "1"},
          // Transactions.
          {"CREATE TABLE t (a int, s nvarchar(20))", ""},
          {"BEGIN TRAN INSERT t VALUES (1, 'x') SELECT @@TRANCOUNT ROLLBACK SELECT COUNT(*) FROM t",
           "1;0"},
          {"BEGIN TRANSACTION INSERT t VALUES (2, 'y') COMMIT WORK SELECT a FROM t", "2"},
          {"COMMIT", "!3902"},
          // Rows that come one after another stay, whatever becomes of the next ones.
          {"CREATE TABLE r (a int PRIMARY KEY) INSERT r VALUES (1) INSERT r VALUES (1) INSERT r "
           "VALUES (2) SELECT COUNT(*) FROM r",
           "2;!2627"},
          {"INSERT r VALUES (3) ROLLBACK", "!3903"},
          {"INSERT r VALUES (4) BEGIN TRAN INSERT r VALUES (5) ROLLBACK SELECT COUNT(*) FROM r",
           "4"},
          {"EXEC ('INSERT r VALUES (6)') INSERT r VALUES (7) CREATE DATABASE z SELECT COUNT(*) "
           "FROM r",
           "6"},
          {"BEGIN TRAN CREATE DATABASE y ALTER DATABASE master SET ONLINE DROP DATABASE y BACKUP "
           "DATABASE master TO DISK = 'C:\\Data\\m.bkp' ROLLBACK",
           "!226;!226;!226;!226"},
          {"USE Nowhere SELECT 'not reached'", "!911"},
          {"CREATE USER u FOR LOGIN nobody", "!15007"},
          {"CREATE USER u FOR LOGIN sa GRANT SELECT, INSERT ON t TO u SELECT name FROM "
           "sys.database_principals",
           "dbo;u"},
          {"CREATE USER U WITHOUT LOGIN CREATE USER DBO WITHOUT LOGIN DROP USER v DROP LOGIN v",
           "!15023;!15023;!15151;!15151"},
      });
  // A NUL is kept within a text and refused outside.
  const RawClient raw(server.Port());
  EXPECT_TRUE(raw.LogIn(LoginPayload("sa", kTestPassword)));
  raw.SendMessage(MessageType::Batch,
                  BatchPayload({"INSERT t VALUES (3, N'a\0b') SELECT s FROM t WHERE a = 3", 55}));
  EXPECT_TRUE(Contains(raw.Receive(), Utf16({"a\0b", 3})));
  raw.SendMessage(MessageType::Batch, BatchPayload({"SELECT \0 1", 10}));
  EXPECT_TRUE(Contains(raw.Receive(), Utf16("Incorrect syntax")));
  const std::string deep(100000, '(');
  EXPECT_EQ(client.Batch("SELECT " + deep).Summary(), "!191");
  std::string nested;
  for (int i = 0; i < 10000; ++i) nested += "IF 1 = 1 ";
  EXPECT_EQ(client.Batch(nested + "SELECT 1").Summary(), "!191");
}

TEST(Statements, TablesAreAltered) {
  const HostFolder folder;
  const RunningServer server(folder.Path);
  LoggedIn client(server);
  Play(
      client,
      {
          {"CREATE TABLE A (a int NOT NULL, b int, c int) CREATE TABLE B (x int)", ""},
          {"ALTER TABLE A ADD CONSTRAINT PK_A PRIMARY KEY CLUSTERED (a ASC) WITH (PAD_INDEX = OFF) "
           "ON [PRIMARY]",
           ""},
          {"ALTER TABLE [dbo].[A] ADD CONSTRAINT [DF_B] DEFAULT ((7)) FOR [b] "
           "ALTER TABLE A WITH CHECK ADD CONSTRAINT CK_C CHECK NOT FOR REPLICATION (c > 0)",
           ""},
          {"INSERT A (a, c) VALUES (1, 5) SELECT * FROM A", "1,7,5"},
          {"INSERT A (a, c) VALUES (1, 5)", "!2627"},
          {"INSERT A (a, c) VALUES (2, 0)", "!547"},
          {"ALTER TABLE A ADD CONSTRAINT CK_B CHECK (b > 8)", "!547"},
          {"ALTER TABLE A WITH NOCHECK ADD CONSTRAINT CK_B CHECK (b > 8)", ""},
          {"ALTER TABLE A ADD CONSTRAINT ck_b CHECK (b > 1)", "!2714;!1750"},
          {"INSERT B VALUES (9) ALTER TABLE B WITH CHECK ADD CONSTRAINT FK_B FOREIGN KEY (x) "
           "REFERENCES A (a)",
           "!547"},
          {"UPDATE B SET x = 1 ALTER TABLE B WITH CHECK ADD CONSTRAINT FK_B FOREIGN KEY (x) "
           "REFERENCES A (a) ON DELETE CASCADE ALTER TABLE B CHECK CONSTRAINT FK_B",
           ""},
          {"INSERT B VALUES (3)", "!547"},
          {"ALTER TABLE B DROP CONSTRAINT FK_B INSERT B VALUES (3)", ""},
          {"ALTER TABLE B ADD CONSTRAINT FK_N FOREIGN KEY (x) REFERENCES Nowhere (a)",
           "!1767;!1750"},
          {"ALTER TABLE A DROP CONSTRAINT DF_B, CK_C, CK_B INSERT A (a, c) VALUES (2, 0) SELECT b "
           "FROM A "
           "WHERE a = 2",
           "NULL"},
          {"ALTER TABLE A ADD d nvarchar(3) NOT NULL CONSTRAINT DF_D DEFAULT 'x'", ""},
          {"ALTER TABLE A ALTER COLUMN d nvarchar(9) NOT NULL", ""},
          {"INSERT A (a, d) VALUES (3, 'longer') INSERT A (a) VALUES (4) SELECT d FROM A",
           "x;x;longer;x"},
          {"ALTER TABLE A DROP CONSTRAINT NoSuch", "!3728"},
          {"ALTER TABLE A ADD CONSTRAINT DF_E DEFAULT 1 FOR e", "!207"},
          {"ALTER TABLE Nowhere ADD a int", "!4902"},
      });
}

TEST(Statements, AreRefusedInTheServersWords) {
  const HostFolder folder;
  const RunningServer server(folder.Path);
  LoggedIn client(server);
  Play(
      client,
      {
          // Names that do not parse.
          {"ALTER DATABASE Alpha\r\nON SET OFFLINE", "!156"},
          {"BACKUP DATABASE Alpha-Beta TO DISK = 'C:\\Data\\a.bkp'", "!102"},
          // The databases of USE are looked for before anything is carried out.
          {"CREATE DATABASE Late USE Late", "!911"},
          {"IF 1 = 2 USE Late", "!911"},
          {"CREATE DATABASE Late", ""},
          // What has to be first, and what must not stand in a block.
          {"SELECT 1 CREATE PROCEDURE p AS SELECT 1", "!111"},
          {"SELECT 1 CREATE VIEW v AS SELECT 1 AS a", "!111"},
          {"SELECT 1 CREATE FUNCTION f() RETURNS int AS BEGIN RETURN 1 END", "!111"},
          {"SELECT 1 ALTER TRIGGER t ON x AFTER INSERT AS SELECT 1", "!111"},
          {"SELECT 1 CREATE SCHEMA s", "!111"},
          {"IF 1 = 1 CREATE PROCEDURE p AS SELECT 1", "!156"},
          {"PRINT 'no'\r\nGO\r\n", "!102"},
          {"CREATE TABEL t (a int)", "!102"},
          {"SET UNHEARD ON", "!195"},
          // Files that are there, and folders where nothing may be.
          {"CREATE DATABASE Sales ON (NAME = S, FILENAME = 'C:\\Data\\Sales.mdf')", ""},
          {"ALTER DATABASE Sales SET OFFLINE DROP DATABASE Sales", ""},
          {"CREATE DATABASE Sales ON (NAME = S, FILENAME = 'C:\\Data\\Sales.mdf')", "!5170;!1802"},
          {"CREATE DATABASE b ON (NAME = b, FILENAME = 'C:\\program files\\b.mdf')", "!5123;!1802"},
          {"BACKUP DATABASE Late TO DISK = 'C:\\Program Files\\x.bkp'", "!3201;!3013"},
          {"RESTORE VERIFYONLY FROM DISK = 'C:\\Data\\no.bkp'", "!3201;!3013"},
          // Objects that are kept as text.
          {"CREATE PROCEDURE dbo.p AS SELECT 1", ""},
          {"CREATE PROC p AS SELECT 1", "!2714"},
          {"CREATE TABLE P (a int)", "!2714"},
          {"ALTER FUNCTION p() RETURNS int AS BEGIN RETURN 1 END", "!208"},
          {"DROP PROCEDURE p DROP PROC IF EXISTS p DROP PROCEDURE p", "!3701"},
          {"CREATE VIEW v AS SELECT a FROM Nowhere", "!208"},
          {"CREATE TABLE Odd.t (a int)", "!2760"},
          {"CREATE SCHEMA Odd", ""},
          {"CREATE TABLE Odd.t (a int) INSERT [Odd].[t] (a) VALUES (3) SELECT t.a FROM Odd.t AS t",
           "3"},
          {"CREATE TYPE Name FROM nvarchar(50) DROP TYPE Name DROP TYPE Name", "!218"},
          {"RAISERROR('told', 10, 1) RAISERROR('bad', 16, 1)", "!50000"},
      });
  const Answer strict = client.Batch("\r\nMERGE t USING u ON 1 = 1 WHEN MATCHED THEN DELETE;");
  EXPECT_EQ(strict.Messages.at(0).Text,
            "sqlstandin does not know MERGE (line 2); a real server may");
}

TEST(Statements, OthersAreTakenNoteOf) {
  const HostFolder folder;
  const RunningServer server(folder.Path, {}, ServerParts::kUsualLoginTime, false);
  LoggedIn client(server);
  const struct {
    const char* Batch;
    const char* Fate;
    const char* Answer = "";
  } cases[] = {
      {"CREATE DATABASE Sales", "carried"},
      {"USE Sales", "carried"},
      {"CREATE TABLE t (a int, s nvarchar(9))", "carried"},
      {"CREATE PROCEDURE p AS INSERT made (a) VALUES (1)", "kept"},
      {"EXEC sp_addextendedproperty N'a', N'b'", "kept"},
      {"CREATE VIEW v AS SELECT UNHEARD(a) AS a FROM t", "kept"},
      {"CREATE TABLE odd (a int, PERIOD FOR SYSTEM_TIME (a, b))", "noted"},
      {"PRINT 'x' MERGE t USING odd ON 1 = 1 WHEN MATCHED THEN DELETE;", "noted", "i0:x"},
      // What rests upon it is no fault.
      {"INSERT odd VALUES (1) INSERT dbo.odd (a) SELECT a FROM v", "noted"},
      {"ALTER TABLE odd ADD b int DROP TABLE odd", "noted"},
      {"EXEC p INSERT made (a) VALUES (2) CREATE UNIQUE INDEX i ON v (a)", "noted"},
      {"CREATE TABLE odd (a int) INSERT odd VALUES (1) SELECT a FROM odd", "carried", "1"},
      // These are faults all the same.
      {"INSERT Nowhere VALUES (1)", "refused", "!208"},
      {"INSERT t (a, b) VALUES (1, 2)", "refused", "!207"},
      {"CREATE VIEW v AS SELECT 1 AS a", "refused", "!2714"},
      {"USE Nowhere", "refused", "!911"},
  };
  for (const auto& each : cases) {
    EXPECT_EQ(client.Batch(each.Batch).Summary(), each.Answer) << each.Batch;
    EXPECT_EQ(server.Journal().back()["fate"], each.Fate) << each.Batch;
  }
  EXPECT_EQ(server.Journal().at(8)["constructs"], nlohmann::json({"MERGE"}));
  EXPECT_EQ(server.Journal().at(8)["carried"], false);
  const nlohmann::json report = server.Report();
  EXPECT_EQ(report["fates"], "ccckkknnnnncrrrr");
  EXPECT_EQ(report["batches"],
            nlohmann::json(
                {{"received", 16}, {"carried", 4}, {"kept", 3}, {"noted", 5}, {"refused", 4}}));
  EXPECT_EQ(report["refused"][0]["error"]["number"], 208);
  EXPECT_EQ(report["databases"][0]["tables"],
            nlohmann::json({{{"name", "dbo.odd"}, {"rows", 1}}, {{"name", "dbo.t"}, {"rows", 0}}}));
}

TEST(Statements, LongBatchesTakeLinearTime) {
  const HostFolder folder;
  const RunningServer server(folder.Path);
  LoggedIn client(server);
  client.Batch("CREATE TABLE t (a int, s nvarchar(max))");
  std::string many;
  for (int i = 0; i < 20000; ++i)
    many += "INSERT INTO t VALUES (" + std::to_string(i) + ", N'x')\r\n";
  EXPECT_EQ(client.Batch(many).Counts.size(), 20000U);
  const std::string text(8'000'000, 'x');
  EXPECT_EQ(client.Batch("INSERT INTO t VALUES (-1, N'" + text + "')").Summary(), "");
  EXPECT_EQ(client.Batch("SELECT s FROM t WHERE a = -1").Rows.at(0).at(0), text);
  EXPECT_EQ(client.Batch("SELECT COUNT(*) FROM t").Summary(), "20001");
}

}  // namespace
}  // namespace talu::standin
