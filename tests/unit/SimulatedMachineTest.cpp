// The simulated machine itself, where packs depend on how it compares with a real one.

#include <gtest/gtest.h>

#include <stdexcept>

#include "HostFolder.h"
#include "PathCases.h"
#include "platform/simulated/SimulatedMachine.h"

namespace talu {
namespace {

TEST(SimulatedServer, KnowsNamesAsAServerDoes) {
  struct Case {
    const char* Statement;
    const char* Failure;  // its beginning; empty: none
  };
  const Case cases[] = {
      {"CREATE DATABASE Sales", "Database 'Sales' already exists."},
      {"create database /* IF */ [New One] -- Sales\r\nDROP DATABASE [new one]", ""},
      {"DROP DATABASE Gone", "Cannot drop the database 'Gone'"},
      {"DROP DATABASE IF EXISTS Gone", ""},
      {"ALTER DATABASE \"Gone\" SET OFFLINE", "User does not have permission to alter database"},
      {"ALTER DATABASE CURRENT SET RECOVERY SIMPLE USE tempdb", ""},
      {"USE Gone", "Database 'Gone' does not exist."},
      {"SELECT [use] FROM T WHERE A = 'USE Gone' OPTION (USE HINT('x'))", ""},
      {"CREATE LOGIN clerk WITH PASSWORD='x'", "The server principal 'clerk' already exists."},
      {"DROP LOGIN Gone", "Cannot drop the login 'Gone'"},
      {"ALTER LOGIN Gone DISABLE", "Cannot alter the login 'Gone'"},
      {"ALTER LOGIN sa DISABLE; GRANT ALTER ANY LOGIN, CREATE DATABASE TO Clerk", ""},
      {"CREATE USER U FOR LOGIN Gone", "'Gone' is not a valid login or you do not have"},
      {"CREATE USER Gone WITH DEFAULT_SCHEMA = dbo", "'Gone' is not a valid login"},
      {"CREATE USER clerk; CREATE USER U FROM LOGIN [Clerk] CREATE USER V WITHOUT LOGIN", ""},
      {"CREATE USER U FOR CERTIFICATE C CREATE USER [D\\u] CREATE USER V WITH PASSWORD = 'x'", ""},
      {"CREATE USER V WITH DEFAULT_SCHEMA = dbo, PASSWORD = 'x'", ""},
      {"EXEC sp_grantdbaccess N'Clerk' EXEC sp_adduser 'Gone'", "'Gone' is not a valid login"},
      {"IF DB_ID(N'Sales') IS NULL CREATE DATABASE Sales", ""},
      {"IF EXISTS (SELECT 1) BEGIN ALTER DATABASE Gone SET OFFLINE DROP DATABASE Gone END", ""},
      {"RESTORE DATABASE Back FROM DISK='x' USE Back", ""},
      {"CREATE PROCEDURE P AS DROP DATABASE Sales", ""},
      // The whole statement counts, not only its first words.
      {"ALTER DATABASE  Sales\r\nON SET OFFLINE", "Incorrect syntax near the keyword 'ON'."},
      {"ALTER DATABASE Sales", "Incorrect syntax near 'Sales'."},
      {"DROP DATABASE  Sales\r\nLOG", "Incorrect syntax near 'LOG'."},
      {"DROP DATABASE Sales; DROP LOGIN Clerk PRINT 1", ""},
      {"DROP LOGIN  ['", "Unclosed quotation mark after the character string '''."},
      {"DROP LOGIN 'Clerk'", "Incorrect syntax near 'Clerk'."},
      {"CREATE DATABASE Alpha-Beta ON", "Incorrect syntax near '-'."},
      {"USE Sales-Old", "Incorrect syntax near '-'."},
      {"IF EXISTS (SELECT 1) BACKUP DATABASE Alpha-Beta TO DISK='x'", "Incorrect syntax near '-'."},
      {"IF EXISTS (SELECT 1) BACKUP DATABASE Order TO DISK='x'",
       "Incorrect syntax near the keyword 'Order'."},
      {"BACKUP DATABASE [Order] TO DISK='x' BACKUP DATABASE @n TO DISK='y'", ""},
      // What EXEC makes is not seen.
      {"EXEC (N'CREATE DATABASE [' + @n + N']') USE Gone", ""},
      {"EXEC dbo.P 'DATABASE' USE Gone", "Database 'Gone' does not exist."},
      {"EXEC master..sp_addlogin 'Desk', 'x' DROP LOGIN Desk", ""},
      {"EXEC sp_addlogin @loginame = N'Clerk', @passwd = 'x'",
       "The server principal 'Clerk' already"},
      {"EXEC (N'create database ' + @n) USE Gone", ""},
      // What is refused as a whole.
      {"CREATE DATABASE New USE [new]", "Database 'new' does not exist."},
      {"CREATE DATABASE New PRINT 1; USE Sales", ""},
      {"PRINT 1 CREATE PROC P AS PRINT 2",
       "'CREATE/ALTER PROCEDURE' must be the first statement in a query batch."},
      {"USE Sales CREATE VIEW V AS SELECT 1", "'CREATE VIEW' must be the first"},
      {"-- a view\nCREATE VIEW V AS SELECT '$(x)' AS [$(y)]", ""},
      {"PRINT $(Number)", "Incorrect syntax near '$'."},
  };
  for (const Case& test : cases) {
    SimulatedMachine machine;
    machine.Server.Databases = {"SALES"};
    machine.Server.Logins = {"CLERK"};
    const auto connection = machine.Server.CreateConnection();
    connection->Open("server=S");
    const auto command = machine.Server.CreateCommand();
    command->ActiveConnection(*connection);
    command->CommandText(test.Statement);
    std::string failure;
    try {
      command->Execute();
    } catch (const RuntimeError& error) {
      failure = error.Description.substr(error.Description.rfind(']') + 1);
    }
    EXPECT_TRUE(failure.starts_with(test.Failure) && failure.empty() == !*test.Failure)
        << test.Statement << ": " << failure;
    EXPECT_EQ(machine.Server.Doubt().empty(), !std::string(test.Statement).starts_with("EXEC (N"));
  }
}

TEST(SimulatedDisk, TakesPathsAsWindowsDoes) {
  const SimulatedDisk disk("D:\\Pack");
  for (const auto& [given, meant] : kPathCases) EXPECT_EQ(disk.FullPath(given), meant) << given;
}

TEST(SimulatedDisk, RefusesTheNamesThatWindowsRefuses) {
  SimulatedMachine machine;
  machine.Disk.MakeFolders("C:\\t");
  const auto error = [&](auto work) {
    try {
      work();
      return 0;
    } catch (const RuntimeError& error) {
      return static_cast<int>(error.Number);
    }
  };
  const std::pair<const char*, int> folders[] = {
      {"Shop ", 0}, {"Shop \\Data", 76}, {"Desk.", 0}, {"Desk.\\Data", 0},
      {"a\tb", 52}, {"a|b", 52},         {"CON", 70},  {"nul.txt", 70},
      {"com9", 70}, {"Aux .x", 70},      {"COM0", 0},  {"Conn", 0}};
  for (const auto& [name, number] : folders) {
    const std::string path = std::string("C:\\t\\") + name;
    EXPECT_EQ(error([&] { machine.Files.CreateFolder(path); }), number) << name;
    EXPECT_EQ(machine.Disk.FolderExists(path), number == 0) << name;
  }
  const std::pair<const char*, int> files[] = {
      {"a.txt ", 0}, {"a\tb", 52}, {"prn.txt", 75}, {"Shop \\x", 76}};
  for (const auto& [name, number] : files) {
    const std::string path = std::string("C:\\t\\") + name;
    EXPECT_EQ(error([&] { machine.Files.OpenTextFile(path, OpenMode::Append); }), number) << name;
  }
  EXPECT_EQ(error([&] { machine.Files.OpenTextFile("C:\\t\\Shop \\x", OpenMode::Input); }), 76);
}

class HostFolderTest : public testing::Test {
 protected:
  HostFolder folder;
  SimulatedMachine machine;
};

// As FindFirstFile lists them.
TEST_F(HostFolderTest, AreListedByTheirUpperCasedUnicodeNames) {
  const std::vector<std::string> order = {"'q", "a b", "a-b", "a.txt", "ab", "B", "[b]", "_u",
                                          "{e", "é",   "÷",   "œ",     "Š",  "ÿ", "ž",   "€"};
  for (const std::string& name : order) folder.Put(name, "");
  machine.Disk.AddHostFolder(folder.Path, "C:\\x");
  std::vector<std::string> listed;
  for (const FolderItem& item : machine.Files.GetFolder("c:\\X")->Files()) {
    listed.push_back(item.Name);
  }
  EXPECT_EQ(listed, order);
}

TEST_F(HostFolderTest, KeepTheirSpellingAndAreNotWrittenTo) {
  folder.Put("windows/system/old.txt", "old");
  machine.Disk.AddHostFolder(folder.Path, "C:");
  EXPECT_EQ(machine.Files.GetSpecialFolder(0), "C:\\windows");
  machine.Files.OpenTextFile("C:\\WINDOWS\\System\\OLD.TXT", OpenMode::Append)->Write(" new");
  machine.Files.FileOperation(2, "C:\\windows\\system\\old.txt", "C:\\copy.txt", 0);
  machine.Disk.SaveTo(folder.Path / "saved", "C:\\Program Files");
  const auto size = [&](const char* path) {
    return std::filesystem::file_size(folder.Path / path);
  };
  EXPECT_EQ(size("saved/C/windows/system/old.txt"), 7U);
  EXPECT_EQ(size("saved/C/copy.txt"), 7U);
  EXPECT_EQ(size("windows/system/old.txt"), 3U);
  EXPECT_FALSE(std::filesystem::exists(folder.Path / "saved/C/Program Files"));
}

TEST_F(HostFolderTest, AreRefusedWhereWindowsCannotHaveThem) {
  for (const char* name : {"a:b", "end.", "end ", "a\tb", "nul.txt", "\xFF.txt", "sub/readme"}) {
    if (std::string(name) == "sub/readme") folder.Put("sub/README", "");
    folder.Put(name, "");
    EXPECT_THROW(machine.Disk.AddHostFolder(folder.Path, "C:\\x"), std::runtime_error) << name;
    std::filesystem::remove(folder.Path / name);
  }
  EXPECT_NO_THROW(machine.Disk.AddHostFolder(folder.Path, "C:\\x"));
}

}  // namespace
}  // namespace talu
