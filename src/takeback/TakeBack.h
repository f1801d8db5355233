#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/Machine.h"
#include "platform/Removal.h"
#include "takeback/TakeBackPlan.h"

namespace talu {

/// Takes back what is recorded in the folder of the program (`Machine::AppPath`, which is the
/// application folder). Nothing outside that folder, the shortcuts in the special folders, the data
/// sources and, where asked for, the databases of the record is touched.
class TakeBack {
 public:
  /// Reads the record, the log and the folder. `program` is the running program's file name.
  /// Without the pack's folder on this machine, packages of Windows Installer and components in the
  /// system's folder stay. Raises 53 when there is no record, 5 with a line for people when it is
  /// not one of this folder, and what reading raises.
  TakeBack(const Machine& machine, Removal& removal, const std::string& program,
           const std::string& packFolder = "");
  ~TakeBack();
  TakeBack(const TakeBack&) = delete;
  TakeBack& operator=(const TakeBack&) = delete;

  /// The last recorded server and login, for the operator to accept or change.
  const std::string& Server() const;
  const std::string& Login() const;
  /// Whether there are databases or logins in the record.
  bool HasDatabases() const;
  /// The pack's folder as the log has it; empty when the log does not tell.
  const std::string& PackFolder() const;

  /// The steps in the order in which they are done.
  const std::vector<Step>& Steps() const;
  /// What would become of each step, in the order of `Steps()`. Changes nothing. `before` is called
  /// before each step: there may be thousands, and window events may be handled then.
  std::vector<Verdict> Plan(
      const TakeBackOptions& options, const std::function<void()>& before = [] {});
  /// Does it, and tells each step. Returns whether all was done that is to be done: then the
  /// record, the log and the program are gone too. Raises nothing but what the view does.
  bool Run(const TakeBackOptions& options, TakeBackView& view);

 private:
  class Work;
  std::unique_ptr<Work> work_;
};

}  // namespace talu
