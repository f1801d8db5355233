#pragma once

#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "platform/Clock.h"
#include "platform/OdbcInstaller.h"
#include "platform/Processes.h"
#include "platform/ScriptingHost.h"
#include "platform/SettingsStore.h"
#include "platform/simulated/Journal.h"
#include "platform/simulated/SimulatedDisk.h"
#include "runtime/TextFunctions.h"

namespace talu {

/// Data sources by name. An unknown driver is refused.
class SimulatedOdbc : public OdbcInstaller {
 public:
  explicit SimulatedOdbc(Journal& journal) : journal_(journal) {}
  bool SQLConfigDataSource(int request, const std::string& driver,
                           const std::string& attributes) override;

  bool HasSource(const std::string& name) const;
  /// The value of an attribute ("SERVER"), or the driver's name ("DRIVER"), of a source; empty
  /// when it has none.
  std::string Value(const std::string& name, const std::string& attribute) const;
  bool Remove(const std::string& name) { return sources_.erase(UCase(name)) != 0; }
  /// Whether the source leads to the database server.
  bool IsOfServer(const std::string& name) const;

  /// All sources: upper-cased names, and attributes separated by NUL, the driver the last.
  const std::map<std::string, std::string>& Sources() const { return sources_; }

  std::vector<std::string> Drivers = {"SQL Server", "Microsoft Access Driver (*.mdb)"};

 private:
  Journal& journal_;
  std::map<std::string, std::string> sources_;
};

/// Programs that end at once. One that is not on the disk cannot be started; the system's own
/// always exist.
class SimulatedProcesses : public Processes {
 public:
  SimulatedProcesses(Journal& journal, SimulatedDisk& disk) : journal_(journal), disk_(disk) {}
  std::int32_t RunAndWait(const std::string& commandLine) override;
  void Start(const std::string& commandLine, int windowStyle) override;

  /// Exit codes by file name, upper-cased; 0 for any other.
  std::map<std::string, std::int32_t> ExitCodes;

 private:
  /// The file that the command line names, found as the platform does; empty when there is none.
  std::string ProgramOf(const std::string& commandLine) const;

  Journal& journal_;
  SimulatedDisk& disk_;
};

/// Special folders in order, and shortcuts as files on the disk.
class SimulatedScripting : public ScriptingHost {
 public:
  SimulatedScripting(Journal& journal, SimulatedDisk& disk);
  std::unique_ptr<ScriptShell> CreateShell() override;

  std::vector<std::string> SpecialFolders;

 private:
  Journal& journal_;
  SimulatedDisk& disk_;
};

class SimulatedSettings : public SettingsStore {
 public:
  explicit SimulatedSettings(Journal& journal) : journal_(journal) {}
  void SaveSetting(const std::string& application, const std::string& section,
                   const std::string& key, const std::string& value) override;

 private:
  Journal& journal_;
};

/// Stands still at `Time`; the times in `Coming` are returned first, one per call; the last one
/// stays.
class SimulatedClock : public Clock {
 public:
  DateTime Now() override;

  DateTime Time{2012, 3, 7, 9, 5};
  std::deque<DateTime> Coming;
};

}  // namespace talu
