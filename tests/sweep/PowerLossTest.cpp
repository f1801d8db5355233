// The process ends at every request in turn.

#include <gtest/gtest.h>

#include "Installation.h"

namespace talu {
namespace {

/// Installs, and ends the process at request number `request`; returns whether it came so far.
/// `events` receives the events up to there.
bool Cut(Installation& run, int request, std::size_t& events) {
  Journal& journal = run.Machine.Journal;
  const int end = journal.Requests() + request;
  journal.OnRequest = [&, end](int number, const char*) {
    if (number != end) return;
    events = journal.Events().size();
    throw ProgramEnded{};
  };
  run.Run();
  journal.OnRequest = nullptr;
  return journal.Requests() == end;
}

TEST(PowerLoss, LeavesWholeRecordsAndAMachineToInstallOn) {
  int ends = 0;
  for (const Scenario& scenario : kScenarios) {
    if (!scenario.Cut) continue;
    for (int request = 1;; ++request) {
      SCOPED_TRACE(std::string(scenario.Name) + ", request " + std::to_string(request));
      Installation run(scenario);
      std::size_t events = 0;
      if (!Cut(run, request, events)) break;
      ++ends;
      for (const char* file : {"Ta-luErrLog.txt", "Uninstall.dat"})
        ASSERT_EQ(run.Read(file), run.Printed(file, events));
      run.Records();
      run.Run();
      if (scenario.End != Scenario::Ending::Finish) {
        EXPECT_EQ(run.Windows->VisibleForm(), "FrmSQLNonQuery");
      } else {
        EXPECT_TRUE(run.Finished() && run.Windows->Messages().empty());
        EXPECT_EQ(run.Log().find("//\r\n//\r\nCan't"), std::string::npos);
      }
      if (testing::Test::HasFailure()) return;
    }
  }
  std::cout << "the process ended at " << ends << " requests, and each time the next installation "
            << "went through\n";
}

}  // namespace
}  // namespace talu
