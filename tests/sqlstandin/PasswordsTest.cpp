// What the journal shows of batches with passwords in them.
#include <gtest/gtest.h>

#include "RunningServer.h"
#include "sql/Passwords.h"

namespace talu::standin {
namespace {

TEST(Journal, MasksPasswordsOnly) {
  const struct {
    const char* Batch;
    const char* Masked;
  } cases[] = {
      {"CREATE LOGIN x WITH PASSWORD = N'a''b', CHECK_POLICY = OFF",
       "CREATE LOGIN x WITH PASSWORD = '***', CHECK_POLICY = OFF"},
      {"SET Password\r\n=\tn'a''b', y", "SET Password\r\n=\t'***', y"},
      {"create login x with password=0x0AFF hashed", "create login x with password='***' hashed"},
      {"CREATE LOGIN x WITH PASSWORD = 'open", "CREATE LOGIN x WITH PASSWORD = '***'"},
      {"EXEC sp_addlogin 'x', 'pw'; PRINT 'kept'", "EXEC sp_addlogin '***', '***'; PRINT 'kept'"},
      {"PRINT 'a;' EXEC N'PASSWORD = N''x'' -- y'", "PRINT 'a;' EXEC N'PASSWORD = ''***'' -- y'"},
      {"CREATE TABLE t (Password [int] DEFAULT ('kept')) SELECT Password, 'kept' FROM t",
       "CREATE TABLE t (Password [int] DEFAULT ('kept')) SELECT Password, 'kept' FROM t"},
      {"UPDATE t SET Password = NULL, a = 'kept' WHERE t.Password = u.Password AND @p = 'kept'",
       "UPDATE t SET Password = NULL, a = 'kept' WHERE t.Password = u.Password AND @p = 'kept'"},
      {"/* pass it on */ PRINT 'kept' -- 'kept'", "/* pass it on */ PRINT 'kept' -- 'kept'"},
      {"SELECT 'it''s", "SELECT 'it''s"},
      {"IF @pwd IS NULL PRINT 'kept'", "IF @pwd IS NULL PRINT 'kept'"},
  };
  for (const auto& each : cases) EXPECT_EQ(sql::PasswordMask(each.Batch).Text(), each.Masked);
}

TEST(Journal, KeepsNoPassword) {
  const HostFolder folder;
  const RunningServer server(folder.Path);
  const char* const batches[] = {
      "CREATE LOGIN x WITH PASSWORD = 'Secret",
      "CREATE LOGIN x WITH PASSWORD = \"Secret\"",
      "CREATE LOGIN x WITH PASSWORD = \"Secret",
      "CREATE LOGIN x WITH PASSWORD = [Secret]",
      "CREATE LOGIN x WITH PASSWORD = Secret",
      "CREATE LOGIN x WITH PASSWORD = !Secret",
      "CREATE LOGIN x WITH PASSWORD 'Secret'",
      "CREATE LOGIN x WITH PASSWORD = 'it's Secret'",
      "CREATE LOGIN x WITH PASSWORD = 'it's Sec'Secret'",
      "CREATE LOGIN x WITH PASSWORD = /* so */ N'Secret",
      "CREATE LOGIN x WITH PASSWORD = 'Secret' PRINT 'open",
      "CREATE LOGIN x WITH PASSWORD = N'Secret', CHECK_POLICY OFF",
      "ALTER LOGIN x WITH PASSWORD = 'Secret' OLD_PASSWORD = 'Secret'",
      "BACKUP DATABASE a TO DISK = 'C:\\x' WITH MEDIAPASSWORD = 'Secret'",
      "BACKUP DATABASE a TO DISK = 'C:\\x' WITH MEDIAPASSWORD = 'Secret",
      "CREATE CREDENTIAL c WITH IDENTITY = 'x', SECRET = 'Secret",
      "EXEC sp_setapprole 'role', 'Secret'",
      "EXEC sp_setapprole 'role', {Encrypt N'Secret'}, 'odbc'",
      "sp_setapprole 'role', 'Secret",
      "EXEC master..sp_addlogin x, Secret",
      "sp_addlogin @loginame = 'x', @passwd = \"Secret\"",
      "EXEC [sp_addlogin] 'x', 'Secret",
      "SELECT * FROM OPENROWSET('SQLOLEDB', 'server';'sa';'Secret', 'SELECT 1')",
      "SELECT * FROM OPENROWSET('SQLOLEDB', 'server';'sa';'Secret",
      "SELECT * FROM OPENROWSET('SQLOLEDB', 'Server=s;UID=sa;PWD=!a Secret;', 'SELECT 1')",
      "SELECT * FROM OPENDATASOURCE('SQLOLEDB', 'User ID=sa;Password=Secret').a.b.c",
      "EXEC(N'CREATE LOGIN x WITH PASSWORD = N''Secret''')",
      "EXEC(N'CREATE LOGIN x WITH PASSWORD = N''Secret'')",
      "EXEC('CREATE LOGIN x WITH PASSWORD = ''' + 'Secret' + '''')",
      "EXEC('sp_addlogin x, ' + 'Secret')",
      "EXEC(\"CREATE LOGIN x WITH PASSWORD = 'Secret'\")",
      "PRINT 'open CREATE LOGIN x WITH PASSWORD = 'Secret', y'",
      "PRINT 'open CREATE LOGIN x WITH PASSWORD = \"Secret\"",
      "-- CREATE LOGIN x WITH PASSWORD = 'Secret'\nPRINT 1 +",
      "PRINT 1 /* CREATE LOGIN x WITH PASSWORD = 'Secret'",
      "SELECT PWDENCRYPT('Secret') FROM Nowhere",
      "DECLARE @pwd nvarchar(20) = N'Secret'",
      "SET @pwd2 = 'Secret'",
      "EXEC sp_change_users_login 'Auto_Fix', 'x', NULL, 'Secret'",
      "EXEC sp_adddistributor 'x', 10, 'Secret'",
  };
  LoggedIn client(server);
  for (const char* batch : batches) client.Batch(batch);
  const auto journal = server.Journal();
  ASSERT_EQ(journal.size(), std::size(batches) + 1);
  for (std::size_t i = 1; i < journal.size(); ++i) {
    EXPECT_EQ(journal[i].dump().find("Secret"), std::string::npos) << journal[i].dump(1);
    EXPECT_NE(journal[i].dump().find("***"), std::string::npos) << journal[i].dump(1);
  }
}

TEST(Journal, KeepsWhatIsNoPasswordInAnError) {
  const HostFolder folder;
  const RunningServer server(folder.Path);
  LoggedIn client(server);
  client.Batch("CREATE LOGIN Clerk WITH PASSWORD = 'x y'");
  client.Batch("CREATE LOGIN Clerk WITH PASSWORD = 'x y'");
  client.Batch("SELECT 'it''s' FROM Nowhere");
  const auto journal = server.Journal();
  EXPECT_EQ(journal.at(2)["error"]["description"], "The server principal 'Clerk' already exists.");
  EXPECT_EQ(journal.at(3)["error"]["description"], "Invalid object name 'Nowhere'.");
}

}  // namespace
}  // namespace talu::standin
