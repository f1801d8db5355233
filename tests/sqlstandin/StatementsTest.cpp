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
            "DATABASE\x01Sales USE [Sales]",
            ""},
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
           {"SELECT UNHEARD(1)", "!195"},
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
          // Syntax errors: nothing of the batch is carried out.
          {"SELECT 1 FROB", "1"},  // an alias
          {"SELECT 1; FROB the thing", "!102"},
          {"PRINT 'a' GO", "!102"},
          {"RESTORE DATABASE x FROM DISK = 'y'", "!102"},
          {"SELECT (1", "!102"},
          {"SELECT 1)", "!102"},
          {"SELECT 'open", "!105"},
          {"SELECT 1 /* open", "!113"},
          {"SELECT @x", "!137"},
          {"DROP DATABASE", "!102"},
          {"CREATE PROCEDURE p AS SELECT 1", "!102"},
          {"SELECT 1 LIMIT 1", "!102"},
          {"EXEC sp_who", "!2812"},
          {"BEGIN SELECT 1", "!102"},
          {"SET ANSI_NULLS ON SET QUOTED_IDENTIFIER OFF SELECT 1", "1"},
          // Transactions.
          {"CREATE TABLE t (a int, s nvarchar(20))", ""},
          {"BEGIN TRAN INSERT t VALUES (1, 'x') SELECT @@TRANCOUNT ROLLBACK SELECT COUNT(*) FROM t",
           "1;0"},
          {"BEGIN TRANSACTION INSERT t VALUES (2, 'y') COMMIT WORK SELECT a FROM t", "2"},
          {"COMMIT", "!3902"},
          {"BEGIN TRAN CREATE DATABASE y ROLLBACK", "!226"},
          {"USE Nowhere SELECT 'not reached'", "!911"},
          {"CREATE USER u FOR LOGIN nobody", "!15007"},
          {"CREATE USER u FOR LOGIN sa GRANT SELECT, INSERT ON t TO u SELECT name FROM "
           "sys.database_principals",
           "dbo;u"},
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
