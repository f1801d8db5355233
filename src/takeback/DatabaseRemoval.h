#pragma once

#include <set>
#include <string>

#include "platform/Ado.h"
#include "startup/AdoObjects.h"
#include "takeback/Site.h"
#include "takeback/TakeBackPlan.h"

namespace talu {

/// Removes databases, each after a backup of it, and logins. One that is not on the server is gone
/// already.
class DatabaseRemoval : private AdoObjects {
 public:
  DatabaseRemoval(const Site& site, const TakeBackOptions& options);

  /// Why the step's name is not sent to the server; empty when it may be.
  static std::string WhyNever(const Step& step);

  /// Both return what there is to say of what was done, and raise the server's error, or 5 with a
  /// line for people.
  std::string DropDatabase(const Step& step);
  std::string DropLogin(const Step& step);

 private:
  /// Connects with what the operator gave or the installation's record has.
  void Connect(std::size_t installation);
  void Send(const std::string& statement);

  const Site& site_;
  const TakeBackOptions& options_;
  std::string connected_;         // the connection text
  std::set<std::string> failed_;  // others that failed: not tried again
  std::string user_;
  std::string failure_;
};

}  // namespace talu
