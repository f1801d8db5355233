#pragma once

#include <string>
#include <vector>

#include "CheckBatch.h"
#include "Finding.h"
#include "platform/simulated/SimulatedMachine.h"

namespace talu::packcheck {

/// What the scripts of one installation type make of a simulated server: what it refuses, and what
/// they take away again although the build records it.
class ServerCheck {
 public:
  ServerCheck(SimulatedMachine& machine, Findings& findings)
      : server_(machine.Journal, machine.Odbc), findings_(findings) {}

  /// Adds what another type makes, for an upgrade of it.
  void Begin(const ServerCheck& other);
  /// Sends a batch. `records`: the build records what it creates, as it does not for a line.
  void Take(const SqlBatch& batch, const SqlFacts& facts, bool records);
  /// Reports what is recorded and there no more; and names that are not there, unless no script
  /// makes a database: they are the customer's then.
  void End();

 private:
  void Record(const SqlBatch& batch, const SqlFacts& facts, bool login);
  bool Has(const std::string& name, bool login) const;
  void Tell(const SqlText& refused);

  struct Recorded {
    std::string Name;
    bool Login;
    Place At;
  };

  SimulatedServer server_;
  Findings& findings_;
  bool isUpgrade_ = false;
  bool madeAny_ = false;
  std::vector<Recorded> recorded_;
  std::vector<SqlText> missing_;
  bool isUnsure_ = false;  // a variable that is left over may be the name of what is made
};

}  // namespace talu::packcheck
