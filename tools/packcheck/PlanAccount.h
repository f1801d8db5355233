#pragma once

#include <iosfwd>
#include <map>
#include <string>

#include "Plan.h"

namespace talu::packcheck {

/// Describes a planned run to people, event by event, in UTF-8; passwords are hidden.
class PlanAccount {
 public:
  PlanAccount(const PlanOptions& options, std::ostream& out) : options_(options), out_(out) {}

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
  void TakePrint(const JournalEvent& event);
  void TakeLogEntry(const std::string& entry);
  void Tell(const char* label, const std::string& text, const JournalEvent& event);
  void Tell(const char* label, const std::string& text);

  const PlanOptions& options_;
  std::ostream& out_;
  /// The number of events of each kind.
  std::map<std::string, int> counts_;
  int failures_ = 0;
  /// Connections tried on the current page.
  int connections_ = 0;
  std::string finalMessage_;
  /// The error of the last failed request: its log entry adds nothing.
  std::string lastError_;
};

}  // namespace talu::packcheck
