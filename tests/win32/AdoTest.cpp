#include "Scratch.h"
#include "platform/win32/Win32Ado.h"

namespace talu {
namespace {

/// Nothing listens on this port.
const char* const kUnreachable =
    "driver={SQL Server};server=127.0.0.1,1;uid=sa;pwd=x;database=Master";

TEST(Ado, RaisesTheProvidersErrors) {
  int waits = 0;
  Win32Ado ado([&] { ++waits; });
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
  EXPECT_EQ(waits, 3) << "the page is painted before anything that may take long";
}

}  // namespace
}  // namespace talu
