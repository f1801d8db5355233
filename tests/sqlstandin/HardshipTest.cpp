// What the server does when the machine has nothing left for it, or a client is no help.
#include <gtest/gtest.h>
#include <pthread.h>
#include <sys/resource.h>

#include <ctime>
#include <functional>
#include <list>

#include "RunningServer.h"

namespace talu::standin {
namespace {

namespace fs = std::filesystem;
using std::chrono::milliseconds;

/// While it lives no thread can begin: its stack would not fit the address space.
class NoThreads {
 public:
  NoThreads() {
    pthread_getattr_default_np(&usual_);
    pthread_attr_t huge;
    pthread_attr_init(&huge);
    pthread_attr_setstacksize(&huge, std::size_t{1} << 46);
    EXPECT_EQ(pthread_setattr_default_np(&huge), 0);
  }
  ~NoThreads() { pthread_setattr_default_np(&usual_); }
  NoThreads(const NoThreads&) = delete;
  NoThreads& operator=(const NoThreads&) = delete;

 private:
  pthread_attr_t usual_{};
};

TEST(Hardship, AClientWithoutAThreadIsTurnedAway) {
  const TestFolder folder;
  const RunningServer server(folder.Path());
  LoggedIn before(server);
  testing::internal::CaptureStderr();
  {
    const NoThreads none;
    for (int i = 0; i < 2; ++i) EXPECT_TRUE(TestClient(server.Port()).Receive().IsClosed);
  }
  LoggedIn after(server);
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "sqlstandin: a client is turned away: Resource temporarily unavailable\n"
            "sqlstandin: a client is turned away: Resource temporarily unavailable\n");
  EXPECT_EQ(before.Batch("SELECT 1").Summary(), "1");
  EXPECT_EQ(after.Batch("SELECT 2").Summary(), "2");
}

/// While it lives the process can open no more files than `Leave` says.
class FewDescriptors {
 public:
  FewDescriptors() {
    getrlimit(RLIMIT_NOFILE, &usual_);
    rlimit few = usual_;
    few.rlim_cur = 200;
    setrlimit(RLIMIT_NOFILE, &few);
  }
  ~FewDescriptors() { setrlimit(RLIMIT_NOFILE, &usual_); }
  FewDescriptors(const FewDescriptors&) = delete;
  FewDescriptors& operator=(const FewDescriptors&) = delete;

  void Leave(int count) {
    for (int number = 0; (number = dup(STDERR_FILENO)) >= 0;) taken_.emplace_back(number);
    for (int i = 0; i < count; ++i) taken_.pop_back();
  }

 private:
  rlimit usual_{};
  std::list<Descriptor> taken_;
};

milliseconds ProcessorTime() {
  timespec time{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
  return milliseconds(time.tv_sec * 1000 + time.tv_nsec / 1'000'000);
}

// The sanitizers look at an object of a new type through a pipe: some descriptors are theirs.
constexpr int kForTheSanitizers = 4;

TEST(Hardship, AClientWithoutADescriptorWaitsForOne) {
  const TestFolder folder;
  const RunningServer server(folder.Path());
  testing::internal::CaptureStderr();
  {
    FewDescriptors few;
    few.Leave(1);
    TestClient client(server.Port());  // takes the last one
    const milliseconds before = ProcessorTime();
    std::this_thread::sleep_for(milliseconds(500));
    EXPECT_LT((ProcessorTime() - before).count(), 100);
    few.Leave(1 + kForTheSanitizers);
    EXPECT_EQ(client.LogIn("sa", kTestPassword).Summary(), "");
  }
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "sqlstandin: clients have to wait: Too many open files\n");
}

TEST(Hardship, AClientThatHasGoneLeavesItsDescriptor) {
  const TestFolder folder;
  const RunningServer server(folder.Path());
  FewDescriptors few;
  {
    std::list<LoggedIn> clients;
    for (int i = 0; i < 1 + kForTheSanitizers; ++i) clients.emplace_back(server);
  }
  while (server.Journal().size() < 2 * (1 + kForTheSanitizers)) {  // until all have logged out
    std::this_thread::sleep_for(milliseconds(5));
  }
  few.Leave(1);
  TestClient client(server.Port());
  EXPECT_EQ(client.LogIn("sa", kTestPassword).Summary(), "");
}

TEST(Hardship, AClientHasALimitedTimeToLogIn) {
  const TestFolder folder;
  const RunningServer server(folder.Path(), {}, milliseconds(400));
  LoggedIn idle(server);
  const std::string login = LoginPayload("sa", kTestPassword, "", kTdsVersion74);
  const std::pair<const char*, std::function<void(TestClient&)>> cases[] = {
      {"says nothing", [](TestClient&) {}},
      {"begins to log in",
       [&](TestClient& client) { client.SendBytes("\x10\x01" + login.substr(0, 40)); }},
      {"sends a byte now and then",
       [](TestClient& client) {
         client.SendBytes(std::string("\x12\x01\x10\0\0\0\0\0", 8));
         for (int i = 0; i < 200 && client.SendBytes("x"); ++i) {
           std::this_thread::sleep_for(milliseconds(50));
         }
       }},
  };
  for (const auto& [what, act] : cases) {
    const auto start = std::chrono::steady_clock::now();
    TestClient client(server.Port());
    act(client);
    EXPECT_TRUE(client.Receive().IsClosed) << what;
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10)) << what;
  }
  EXPECT_EQ(idle.Batch("SELECT 1").Summary(), "1") << "one that is logged in may be silent";
}

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
