#pragma once

#include <iosfwd>
#include <limits>
#include <map>
#include <optional>
#include <string>

#include "Plan.h"
#include "PlanPlaces.h"

namespace talu::packcheck {

/// Describes a planned run to people, event by event, in UTF-8; passwords are hidden.
class PlanAccount {
 public:
  static constexpr int kAll = std::numeric_limits<int>::max();

  /// Of what succeeds, a page shows so many of a kind and counts the others: `listed`.
  PlanAccount(const PlanOptions& options, std::ostream& out, int listed = kAll)
      : options_(options), out_(out), listed_(listed) {}

  /// Before the first event it writes what is planned.
  void Take(PlannedRun& run, const JournalEvent& event);
  /// Writes how the run ended.
  void End(const PlannedRun& run);
  /// How many requests and log entries were reported as failed.
  int Failures() const { return failures_; }

 private:
  void Begin();
  void TakePage(const PlannedRun& run, const JournalEvent& event);
  void TakeStatement(PlannedRun& run, const JournalEvent& event);
  void TakePrint(PlannedRun& run, const JournalEvent& event);
  void TakeLogEntry(PlannedRun& run, const std::string& entry);
  std::optional<DatabaseBuild::BatchOrigin> OriginOf(PlannedRun& run, std::string_view batch);
  std::string Explained(const PlannedRun& run, const std::string& error) const;
  bool Passes(const char* label);
  void EndPage();
  void Tell(const char* label, const std::string& text, const JournalEvent& event);
  void Tell(const char* label, const std::string& text);

  const PlanOptions& options_;
  std::ostream& out_;
  int listed_;
  /// The number of events of each kind.
  std::map<std::string, int> counts_;
  int failures_ = 0;
  /// Connections tried on the current page.
  int connections_ = 0;
  std::string finalMessage_;
  /// The error of the last failed request: its log entry adds nothing.
  std::string lastError_;
  /// How many of a kind the page has had.
  std::map<std::string, int> onPage_;
  std::optional<ScriptPlaces> places_;
  /// Of which script the places are, counted as it was opened.
  int placesOf_ = 0;
  /// The statements sent when a place was sought last.
  int statementsAtPlace_ = 0;
};

}  // namespace talu::packcheck
