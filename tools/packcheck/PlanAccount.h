#pragma once

#include <iosfwd>
#include <map>
#include <string>

#include "Plan.h"

namespace talu::packcheck {

/// Tells a planned run to a person, event by event, in UTF-8; passwords are hidden.
class PlanAccount {
 public:
  PlanAccount(const PlanOptions& options, std::ostream& out) : options_(options), out_(out) {}

  /// Before the first event it tells what is planned.
  void Take(PlannedRun& run, const JournalEvent& event);
  /// Ends with where the run ended.
  void End(const PlannedRun& run);
  /// How many requests and entries were told as failed.
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
  /// How many events of each kind came.
  std::map<std::string, int> counts_;
  int failures_ = 0;
  /// Connections that were tried on the page on the screen.
  int connections_ = 0;
  std::string finalMessage_;
  /// Of the last request that failed: its log entry tells nothing new.
  std::string lastError_;
};

}  // namespace talu::packcheck
