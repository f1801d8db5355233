// The fault sweep: request k of a whole installation fails once, for every k, with every error that
// such a request can raise. What comes behind is what comes in the run without a fault, line by
// line, but for the consequences that the procedures name.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <set>

#include "Comparison.h"
#include "Consequences.h"
#include "Installation.h"
#include "Trace.h"
#include "runtime/TextFunctions.h"

namespace talu {
namespace {

constexpr std::int32_t kLoginRefused = -2147217843;
constexpr std::int32_t kErrorsInCommand = -2147217900;
constexpr std::int32_t kAccessDenied = -2147024891;

/// Each error with the kinds of requests that can raise it: a failed allocation and errors of their
/// own; the ones that a procedure asks for by number are among them.
constexpr std::pair<std::int32_t, const char*> kErrors[] = {
    {error::kOutOfMemory,
     "|browse|connect|copy|create command|create connection|create shell|create shortcut|delete|"
     "disconnect|files|folder|folders|mkdir|open|picture|print|read|shortcut|show|special folder|"
     "special folders|sql|start|"},
    {error::kUnspecified, "|browse|connect|disconnect|special folders|"},
    {kLoginRefused, "|connect|"},
    {error::kDiskFull, "|copy|"},
    {error::kCannotCreateObject, "|create command|create connection|create shell|"},
    {kAccessDenied, "|create shortcut|shortcut|"},
    {error::kInvalidProcedureCall, "|dsn|"},
    {error::kPermissionDenied, "|delete|files|folders|mkdir|open|print|"},
    {error::kPathNotFound, "|folder|mkdir|special folder|"},
    {error::kInvalidPicture, "|picture|"},
    {error::kDeviceIO, "|read|"},
    {error::kFileNotFound, "|run|start|"},
    {kErrorsInCommand, "|sql|"}};

constexpr const char* kFault = "The fault.";

using Lines = std::vector<Trace::Line>;

enum Outcome { Done, RolledBack, EndedWithBox, ServerLost };

class FaultSweep : public testing::TestWithParam<Scenario> {
 protected:
  static void SetUpTestSuite() {
    if (const char* file = std::getenv("SWEEP_RUNS")) journals_.open(file, std::ios::binary);
  }

  void Sweep(const Scenario& scenario) {
    Installation run(scenario);
    Begin(run);
    const Trace whole = Trace::Of(run, 0, RuntimeError(0), 2000);
    EXPECT_EQ(End(run), scenario.End == Scenario::Ending::Finish ? Done : RolledBack);
    EXPECT_TRUE(!run.Finished() || run.Windows->Messages().empty());
    CheckRecord(run);
    for (std::size_t at = 0; at < whole.Requests.size(); ++at) {
      const std::string& kind = whole.Requests[at];
      int errors = 0;
      for (const auto& [number, kinds] : kErrors) {
        if (!Contains(kinds, "|" + kind + "|")) continue;
        ++errors;
        const int request = static_cast<int>(at) + 1;
        const std::string name = std::string(scenario.Name) + ", request " +
                                 std::to_string(request) + ", error " + std::to_string(number);
        SCOPED_TRACE(name + ": " + kind + " in \"" + whole.Lines[whole.At(request)].Text + "\"");
        Fail(scenario, whole, request, number, name);
        if (HasFailure()) return;
      }
      ASSERT_GT(errors, 0) << kind;
    }
  }

 private:
  void Fail(const Scenario& scenario, const Trace& whole, int request, std::int32_t number,
            const std::string& name) {
    const std::string& kind = whole.Requests[static_cast<std::size_t>(request - 1)];
    Installation run(scenario);
    Begin(run);
    Trace trace;
    ASSERT_NO_THROW(trace = Trace::Of(run, request, RuntimeError(number, kFault, "Test"),
                                      3 * static_cast<int>(whole.Requests.size()) + 100));
    ASSERT_EQ(run.Machine.Journal.FailedRequest(), kind);
    Tell(name, trace);
    const std::size_t at = whole.At(request);
    const auto consequences = ConsequencesOf(whole.Lines, at, number);
    const auto other = std::ranges::find_if(
        consequences, [](const Consequence* one) { return one->Told != Told::Log; });
    const Told told = other == consequences.end() ? Told::Log : (*other)->Told;
    EXPECT_EQ(Differences(whole.Lines, at, trace.Lines, consequences, told, kFault), "");
    if (told == Told::Box) {
      EXPECT_EQ(Written(trace.Lines), Written(whole.Lines));
    }
    CheckTold(run, told, number);
    const Outcome outcome = End(run);
    EXPECT_EQ(outcome == EndedWithBox, told == Told::ErrorBox);
    if (outcome == RolledBack) CheckRollback(run);
    CheckRecord(run);
  }

  /// For the comparison of two builds: one line a run, and all of the one that is asked for.
  void Tell(const std::string& name, const Trace& trace) {
    journals_ << name << ": " << trace.Lines.size() << " lines, " << trace.Digest << "\n";
    const char* wanted = std::getenv("SWEEP_LINES_OF");
    if (wanted == nullptr || name != wanted) return;
    for (const Trace::Line& line : trace.Lines) std::cout << line.Text << "\n";
  }

  /// What the last try of FrmLocation wrote, but for its dated copy.
  static std::vector<std::string> Written(const Lines& lines) {
    std::vector<std::string> written;
    for (const auto& [text, parts, request] : lines) {
      if (text == "hide FrmLocation") break;
      if (text.starts_with("browse ")) written.clear();
      const bool copied = text.starts_with("log //~");
      if (!copied && (text.starts_with("log ") || text.starts_with("record "))) {
        written.push_back(text);
      }
    }
    return written;
  }

  static void CheckTold(Installation& run, Told told, std::int32_t number) {
    const std::vector<std::string>& messages = run.Windows->Messages();
    const std::string fault = number == error::kOutOfMemory ? "Out of memory" : kFault;
    const auto isShown = [&](const std::string& text) {
      return told == Told::ErrorBox
                 ? text == "Run-time error '" + std::to_string(number) + "':\r\n\r\n" + fault
                 : Contains(text, fault) || (number == error::kPermissionDenied &&
                                             text ==
                                                 "Location in use,Please select Another "
                                                 "Location...");
    };
    const bool shown = std::ranges::any_of(messages, isShown);
    // That a failed build's box shows the last error is its own consequence.
    EXPECT_TRUE(told == Told::Log || shown == (told == Told::Box || told == Told::ErrorBox));
    EXPECT_EQ(Contains(run.Log(), fault + "\r\n"), told == Told::Log) << run.Log();
    // The password is for the server, the box that it was typed into, and one record.
    const std::string password = "operator's";
    for (const std::string& text : messages) EXPECT_FALSE(Contains(text, password)) << text;
    EXPECT_FALSE(Contains(run.Log(), password));
    for (const JournalEvent& event : run.Machine.Journal.Events()) {
      EXPECT_FALSE(event.Kind == "set" && event.Text("control") != "TxtPsWord" &&
                   Contains(event.Text("value"), password))
          << event.Text("control");
    }
  }

  void Begin(Installation& run) {
    events_ = run.Machine.Journal.Events().size();
    records_ = run.Records().size();
    databases_ = run.Machine.Server.Databases;
    logins_ = run.Machine.Server.Logins;
  }

  /// The program is on a page, finished, or ended with a reason: anything else fails the test.
  static Outcome End(const Installation& run) {
    const std::vector<std::string>& messages = run.Windows->Messages();
    if (run.Finished()) return Done;
    if (run.Windows->Ended()) {
      EXPECT_FALSE(messages.empty());
      return !messages.empty() && messages.back().starts_with("Run-time error") ? EndedWithBox
                                                                                : ServerLost;
    }
    EXPECT_EQ(run.Windows->VisibleForm(), "FrmSQLNonQuery");
    const std::string status = run.Shown("LblMsg");
    EXPECT_TRUE(status == "Database creation not finished..." ||
                status == "Script format is not correct...." ||
                status == "Database authentication failed, Can not continue ...")
        << status;
    return RolledBack;
  }

  /// What was printed is there whole, and what this run recorded happened. A data source and an
  /// add-on are recorded whatever came of them.
  void CheckRecord(Installation& run) {
    const std::size_t events = run.Machine.Journal.Events().size();
    for (const char* file : {"Ta-luErrLog.txt", "Uninstall.dat"})
      EXPECT_EQ(run.Read(file), run.Printed(file, events));
    const std::vector<std::string> records = run.Records();
    for (std::size_t at = records_; at < records.size(); ++at) {
      SCOPED_TRACE(records[at]);
      const std::size_t colon = records[at].find(':');
      const std::string tag = records[at].substr(0, colon);
      const std::string value = records[at].substr(colon + 1);
      if (tag == "AppFolder" || tag == "DBFolder" || tag == "ShotcutFolder") {
        EXPECT_TRUE(run.Disk().FolderExists(value));
      } else if (tag == "Shotcut") {
        EXPECT_TRUE(run.Disk().FileExists(value));
      } else if (tag == "DBNames" || tag == "DBLogins") {
        const std::vector<std::string> names = Split(value, ',');
        EXPECT_EQ(std::to_string(names.size() - 1), names.front());
        const SimulatedServer& server = run.Machine.Server;
        for (std::size_t name = 1; name < names.size(); ++name) {
          const auto& there = tag == "DBNames" ? server.Databases : server.Logins;
          EXPECT_TRUE(there.contains(UCase(TrimView(names[name])))) << names[name];
        }
      } else {
        EXPECT_TRUE(tag == "Server" || tag == "UsrName" || tag == "PsWord" || tag == "SystemDSN" ||
                    tag == "AddOns");
      }
    }
  }

  /// Everything that the failed build created is gone, unless a statement of that list's own
  /// rollback failed: it ends its list.
  void CheckRollback(Installation& run) {
    const std::vector<JournalEvent>& events = run.Machine.Journal.Events();
    std::size_t build = events_;
    for (std::size_t at = events_; at < events.size(); ++at) {
      if (events[at].Kind == "connect") build = at;  // the backup's comes before
    }
    const auto listEnded = [&](const char* alter, const char* drop) {
      return std::any_of(events.begin() + static_cast<std::ptrdiff_t>(build), events.end(),
                         [&](const JournalEvent& event) {
                           const std::string text = event.Text("text");
                           return event.Error && (text == "USE Master" || text.starts_with(alter) ||
                                                  text.starts_with(drop));
                         });
    };
    const SimulatedServer& server = run.Machine.Server;
    EXPECT_TRUE(IsWithout(server.Databases, databases_) ||
                listEnded("ALTER DATABASE", "DROP DATABASE"));
    EXPECT_TRUE(IsWithout(server.Logins, logins_) || listEnded("DROP LOGIN", "DROP LOGIN"));
  }

  /// Whether nothing is in `now` that was not in `before`.
  static bool IsWithout(const std::set<std::string>& now, const std::set<std::string>& before) {
    return std::ranges::includes(before, now);
  }

  static inline std::ofstream journals_;
  /// How things stood when the run began.
  std::size_t events_ = 0;
  std::size_t records_ = 0;
  std::set<std::string> databases_;
  std::set<std::string> logins_;
};

TEST_P(FaultSweep, NoFaultLosesAnything) {
  Sweep(GetParam());
}

INSTANTIATE_TEST_SUITE_P(Of, FaultSweep, testing::ValuesIn(kScenarios), [](const auto& scenario) {
  std::string name = scenario.param.Name;
  std::erase_if(name, [](char character) { return character == ',' || character == ' '; });
  return name;
});

}  // namespace
}  // namespace talu
