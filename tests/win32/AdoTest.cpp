#include "Scratch.h"
#include "platform/win32/Win32Ado.h"

namespace talu {
namespace {

/// Nothing listens on this port.
const char* const kUnreachable =
    "driver={SQL Server};server=127.0.0.1,1;uid=sa;pwd=x;database=Master";

TEST(Apartment, HandlesEventsDuringWhatTakesLongAndPassesOnItsErrors) {
  const DWORD here = GetCurrentThreadId();
  std::vector<std::string> doings;
  Apartment apartment([&](HANDLE done) {
    EXPECT_EQ(WaitForSingleObject(done, 0), WAIT_TIMEOUT);
    doings.emplace_back("meanwhile");
    WaitForSingleObject(done, INFINITE);
  });
  apartment.Do([&] { EXPECT_NE(GetCurrentThreadId(), here); }, false);
  EXPECT_TRUE(doings.empty());
  EXPECT_EQ(ErrorOf([&] {
              apartment.Do(
                  [&] {
                    Sleep(100);
                    doings.emplace_back("done");
                    throw RuntimeError(error::kDiskFull);
                  },
                  true);
            }),
            error::kDiskFull);
  apartment.Do([&] { doings.emplace_back("again"); }, false);
  EXPECT_EQ(doings, (std::vector<std::string>{"meanwhile", "done", "again"}));
}

/// The objects of this thread, and the lively ones.
class AdoTest : public testing::TestWithParam<bool> {};
INSTANTIATE_TEST_SUITE_P(Objects, AdoTest, testing::Bool(), [](const auto& info) {
  return std::string(info.param ? "Lively" : "Still");
});

/// How many objects of the stand-in for ADO are alive; 0 where the machine has ADO itself.
int ObjectsAlive() {
  const FARPROC alive = GetProcAddress(GetModuleHandleW(L"wineado"), "ObjectsAlive");
  return alive != nullptr ? static_cast<int>(alive()) : 0;
}

void MeetErrors(Ado& ado) {
  const auto connection = ado.CreateConnection();
  EXPECT_EQ(connection->State(), 0);
  EXPECT_EQ(ErrorOf([&] { connection->Close(); }), 3704);
  EXPECT_EQ(ErrorOf([&] { connection->Open(kUnreachable); }), error::kUnspecified);
  connection->ConnectionString(kUnreachable);
  try {
    connection->Open();
    ADD_FAILURE() << "opened";
  } catch (const RuntimeError& failure) {
    EXPECT_EQ(failure.Number, error::kUnspecified);
    EXPECT_FALSE(failure.Description.empty());
  }
  EXPECT_EQ(connection->State(), 0);

  const auto command = ado.CreateCommand();
  command->CommandTimeout(300);
  command->CommandText("USE Master");
  EXPECT_EQ(ErrorOf([&] { command->ActiveConnection(*connection); }), 3709);
  EXPECT_EQ(ErrorOf([&] { command->Execute(); }), 3709);
}

TEST_P(AdoTest, RaisesTheProvidersErrors) {
  int waits = 0;
  Win32Ado still([&] { ++waits; },
                 [&](HANDLE done) {
                   ++waits;
                   WaitForSingleObject(done, INFINITE);
                 });
  MeetErrors(GetParam() ? still.Lively() : still);
  EXPECT_EQ(waits, 3) << "the page is painted before anything that may take long, or lives on";
  EXPECT_EQ(ObjectsAlive(), 0) << "an object was not let go, or not by its own thread";
}

}  // namespace
}  // namespace talu
