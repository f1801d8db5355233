// What the server does when a client is no help, or could do harm.
#include <gtest/gtest.h>

#include <functional>

#include "RunningServer.h"

namespace talu::standin {
namespace {

namespace fs = std::filesystem;
using std::chrono::milliseconds;

TEST(Hardship, AClientHasALimitedTimeToLogIn) {
  const HostFolder folder;
  const RunningServer server(folder.Path, {}, milliseconds(400));
  LoggedIn idle(server);
  const std::string login = LoginPayload("sa", kTestPassword);
  const std::pair<const char*, std::function<void(const RawClient&)>> cases[] = {
      {"says nothing", [](const RawClient&) {}},
      {"begins to log in",
       [&](const RawClient& client) { client.Send("\x10\x01" + login.substr(0, 40)); }},
      {"sends a byte now and then",
       [](const RawClient& client) {
         client.Send(std::string("\x12\x01\x10\0\0\0\0\0", 8));
         for (int i = 0; i < 200 && client.Send("x"); ++i) {
           std::this_thread::sleep_for(milliseconds(50));
         }
       }},
  };
  for (const auto& [what, act] : cases) {
    const auto start = std::chrono::steady_clock::now();
    const RawClient client(server.Port());
    act(client);
    EXPECT_EQ(client.Receive(), "") << what;
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10)) << what;
  }
  EXPECT_EQ(idle.Batch("SELECT 1").Summary(), "1") << "one that is logged in may be silent";
}

TEST(Hardship, ABackupHarmsNoOtherFile) {
  const HostFolder folder;
  const RunningServer server(folder.Path);
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
