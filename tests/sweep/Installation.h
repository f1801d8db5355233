#pragma once

#include <array>
#include <memory>
#include <string>
#include <vector>

#include "Wizard.h"
#include "platform/simulated/SimulatedMachine.h"

namespace talu {

/// A whole installation of a small pack that has something for every step.
struct Scenario {
  enum class Ending { Finish, Refused, Malformed };

  const char* Name;
  /// The option buttons that the operator selects.
  const char* Type;
  const char* Mode;
  /// An earlier installation lies in the folder already.
  bool Over;
  /// The build ends with its rollback when a batch of the scripts is refused or a script is
  /// malformed.
  Ending End;
  /// The test that ends the process at every request takes it too.
  bool Cut;
};

inline constexpr std::array<Scenario, 8> kScenarios = {{
    {"server, fresh", "OptFresh", "OptServer", false, Scenario::Ending::Finish, true},
    {"server, demo", "OptDemo", "OptServer", false, Scenario::Ending::Finish, false},
    {"server, upgrade", "OptUpgrade", "OptServer", true, Scenario::Ending::Finish, true},
    {"client, fresh", "OptFresh", "OptClient", false, Scenario::Ending::Finish, true},
    {"client, demo", "OptDemo", "OptClient", false, Scenario::Ending::Finish, false},
    {"client, upgrade", "OptUpgrade", "OptClient", true, Scenario::Ending::Finish, false},
    {"a batch is refused", "OptFresh", "OptServer", false, Scenario::Ending::Refused, true},
    {"a script is malformed", "OptFresh", "OptServer", false, Scenario::Ending::Malformed, false},
}};

/// A machine with the pack, and an operator who installs it and presses on after a setback.
class Installation {
 public:
  explicit Installation(const Scenario& scenario);

  /// Starts the program anew, on the machine as it is, and installs until the program has ended or
  /// nothing is left to press. Each page is tried three times at most.
  void Run();

  /// The program ends, and its files are closed.
  void EndProgram() { wizard_.reset(); }

  /// The file's text, empty without it.
  std::string Read(const std::string& name) { return Disk().ReadFile(App + name).value_or(""); }
  std::string Log() { return Read("Ta-luErrLog.txt"); }
  /// What the file must hold by the first `events` events of the journal.
  std::string Printed(const std::string& name, std::size_t events) const;
  /// The records of Uninstall.dat. Fails the test when one is not whole.
  std::vector<std::string> Records();
  SimulatedDisk& Disk() { return Machine.Disk; }
  /// The text of a control of the page on the screen; empty without it.
  std::string Shown(const std::string& control) const;
  /// The operator pressed Finish on the last page, all done.
  bool Finished() const { return finished_; }

  SimulatedMachine Machine;
  /// The windows and the wizard of the program's last start.
  std::unique_ptr<SimulatedWindows> Windows;
  const std::string App = "C:\\Progs\\TA-LU\\App\\";

 private:
  void PutPack();
  /// Does what the page asks for; false when it leaves nothing to do.
  bool Act(const std::string& page);

  const Scenario& scenario_;
  std::unique_ptr<talu::Wizard> wizard_;
  bool finished_ = false;
};

}  // namespace talu
