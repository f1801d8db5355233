#pragma once

#include <set>
#include <string>

#include "Plan.h"

namespace talu::packcheck {

/// The operator of a planned run: does on each page what a person would do to get the installation
/// of the options.
class PlanOperator {
 public:
  PlanOperator(const PlanOptions& options, SimulatedWindows& windows)
      : options_(options), windows_(windows) {}

  /// Continues from the current page to Finish, or until the wizard stops. Returns why it stopped;
  /// empty after Finish.
  std::string Play();

 private:
  /// Fills in the current page. Returns what prevents it; empty when nothing does.
  std::string FillIn(const std::string& page);
  std::string ChooseType();
  void FillInAuthentication();
  void FillInLocation();
  std::string GoBackAndComeAgain(const std::string& page);
  std::string WhyStopped(const std::string& page) const;
  std::string Shown(const char* control) const;

  const PlanOptions& options_;
  SimulatedWindows& windows_;
  std::set<std::string> wentBackFrom_;
};

}  // namespace talu::packcheck
