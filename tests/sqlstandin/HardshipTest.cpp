// What the server does when the machine has nothing left for it, or a client is no help.
#include <gtest/gtest.h>

#include "RunningServer.h"

namespace talu::standin {
namespace {

namespace fs = std::filesystem;

TEST(Hardship, ABackupHarmsNoOtherFile) {
  const TestFolder folder;
  const RunningServer server(folder.Path());
  LoggedIn client(server);
  client.Batch("CREATE DATABASE Sales ON (NAME=S, FILENAME='C:\\Data\\Sales.mdf')");
  client.Batch("CREATE DATABASE Live ON (NAME=L, FILENAME='C:\\Data\\a.bkp.part')");
  client.Batch("USE Live CREATE TABLE t (a int) INSERT t VALUES (7)");
  const char* others[] = {"a.bkp.part-journal", "a.bkp-journal", "a.bkp-wal", "a.bkp.tmp"};
  for (const char* other : others) std::ofstream(server.Data() / other) << "kept";
  const auto count = [&] { return std::distance(fs::directory_iterator(server.Data()), {}); };
  const auto before = count();
  EXPECT_EQ(client.Batch("BACKUP DATABASE Sales TO DISK = 'C:\\Data\\a.bkp'").Summary(), "");
  EXPECT_EQ(count(), before + 1) << "the backup alone came";
  EXPECT_EQ(client.Batch("SELECT a FROM Live..t").Summary(), "7");
  for (const char* other : others) EXPECT_EQ(fs::file_size(server.Data() / other), 4U) << other;
  // What belongs to a database that is in use is no place for a backup.
  for (const char* live : {"a.bkp.part", "A.BKP.PART-wal", "Sales_log.ldf"}) {
    const std::string statement = std::string("BACKUP DATABASE Sales TO DISK = 'C:\\Data\\") + live;
    EXPECT_EQ(client.Batch(statement + "' WITH INIT").Summary(), "!3201;!3013") << live;
  }
  EXPECT_EQ(client.Batch("SELECT a FROM Live..t").Summary(), "7");
}

}  // namespace
}  // namespace talu::standin
