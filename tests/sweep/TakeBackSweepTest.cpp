// An installation is taken back, and request k fails or the process ends there, for every k.
// Nothing but what the installation made is touched, and a second run finishes.

#include <gtest/gtest.h>

#include "Installation.h"
#include "MachineState.h"
#include "runtime/TextFunctions.h"
#include "takeback/TakeBack.h"

namespace talu {
namespace {

using Things = std::set<std::string>;

class NoView : public TakeBackView {
 public:
  void Begin(const Step&, std::size_t, std::size_t) override {}
  void End(const Step&, const Verdict&) override {}
};

/// An installed product.
class Taken {
 public:
  explicit Taken(const Scenario& scenario) : run(scenario) {
    run.Run();
    run.EndProgram();
    run.Disk().WriteFile(run.App + "Uninstall.exe", "program");
    installed = MachineState::Of(run.Machine);
  }

  /// Returns whether nothing is left. Raises what `TakeBack` does.
  bool TakeBack() {
    Machine parts = run.Machine.Parts;
    parts.AppPath = run.App.substr(0, run.App.size() - 1);
    TakeBackOptions options;
    options.DropDatabases = true;
    NoView view;
    talu::TakeBack work(parts, run.Machine.Removal, "Uninstall.exe", "D:\\Pack");
    return work.Run(options, view);
  }
  /// What it has changed so far.
  Things Changed() { return MachineState::Differences(installed, MachineState::Of(run.Machine)); }
  /// Runs it again; without a record there is nothing to do.
  void Finish() {
    if (run.Disk().FileExists(run.App + "Uninstall.dat")) {
      EXPECT_TRUE(TakeBack());
    }
  }

  Installation run;
  MachineState installed;
};

class TakeBackSweep : public testing::TestWithParam<Scenario> {
 protected:
  /// `disturb` makes request number k fail, or end the process.
  template <class Disturb>
  void Sweep(const char* what, Disturb disturb) {
    Taken whole(GetParam());
    const int before = whole.run.Machine.Journal.Requests();
    ASSERT_TRUE(whole.TakeBack());
    const int requests = whole.run.Machine.Journal.Requests() - before;
    const Things taken = whole.Changed();
    const MachineState end = MachineState::Of(whole.run.Machine);
    for (int request = 1; request <= requests; ++request) {
      Taken again(GetParam());
      Journal& journal = again.run.Machine.Journal;
      disturb(journal, journal.Requests() + request);
      SCOPED_TRACE(std::string(what) + " at request " + std::to_string(request));
      try {
        again.TakeBack();
      } catch (const ProgramEnded&) {
        journal.OnRequest = nullptr;
      } catch (...) {
        CaughtError();
        EXPECT_EQ(again.Changed(), Things());  // it could not begin
      }
      for (const std::string& thing : again.Changed()) {
        // A record that is written anew; the new one before it stands in the old one's place.
        EXPECT_TRUE(taken.contains(thing) || Contains(thing, "\\Uninstall.")) << thing;
      }
      again.Finish();
      Things rest = MachineState::Differences(end, MachineState::Of(again.run.Machine));
      // After the record only the program and empty folders may be left: it has nothing to go by.
      rest.erase("file C:\\Progs\\TA-LU\\App\\Uninstall.exe");
      rest.erase("folder C:\\Progs\\TA-LU\\App");
      rest.erase("folder C:\\Progs\\TA-LU");
      EXPECT_EQ(rest, Things());
      if (HasFailure()) return;
    }
    std::cout << what << " at " << requests << " requests, and a second run finished\n";
  }
};

TEST_P(TakeBackSweep, AFailedRequestLeavesTheRestAndTheNextRunFinishes) {
  for (const std::int32_t number :
       {error::kPermissionDenied, error::kOutOfMemory, error::kDeviceIO}) {
    Sweep("a failure", [number](Journal& journal, int request) {
      journal.FailRequest(request, RuntimeError(number));
    });
    if (HasFailure()) return;
  }
}

TEST_P(TakeBackSweep, AnEndOfTheProcessLosesNothing) {
  Sweep("an end", [](Journal& journal, int request) {
    journal.OnRequest = [request](int number, const char*) {
      if (number == request) throw ProgramEnded{};
    };
  });
}

INSTANTIATE_TEST_SUITE_P(Of, TakeBackSweep,
                         testing::Values(kScenarios[0], kScenarios[2], kScenarios[3]),
                         [](const auto& scenario) {
                           std::string name = scenario.param.Name;
                           std::erase_if(name, [](char c) { return c == ',' || c == ' '; });
                           return name;
                         });

}  // namespace
}  // namespace talu
