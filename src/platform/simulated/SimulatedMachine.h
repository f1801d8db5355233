#pragma once

#include <string>

#include "platform/Machine.h"
#include "platform/simulated/Journal.h"
#include "platform/simulated/SimulatedDisk.h"
#include "platform/simulated/SimulatedFiles.h"
#include "platform/simulated/SimulatedRemoval.h"
#include "platform/simulated/SimulatedServer.h"
#include "platform/simulated/SimulatedShell.h"
#include "platform/simulated/SimulatedWindows.h"

namespace talu {

/// A whole machine in memory: disk, server, data sources, programs, a clock and an operator. It
/// journals requests and can fail any of them once.
class SimulatedMachine {
 public:
  /// The pack lies at `appPath`; C: has the system's folders and "Program Files". Raises
  /// std::runtime_error for a code page that the host does not know.
  explicit SimulatedMachine(const std::string& appPath = "D:\\Pack", int codePage = 1252)
      : CodePage(codePage),
        Disk(appPath),
        Parts{.Windows = Windows,
              .Files = Files,
              .Shell = Files,
              .DataAccess = Server,
              .Odbc = Odbc,
              .Programs = Programs,
              .Scripting = Scripting,
              .Settings = Settings,
              .Clock = Clock,
              .CodePage = CodePage,
              .AppPath = appPath} {
    Disk.MakeFolders("C:\\Windows\\system");
    Disk.MakeFolders("C:\\Program Files");
  }

  talu::CodePage CodePage;
  talu::Journal Journal;
  SimulatedDisk Disk;
  SimulatedFiles Files{Journal, Disk, CodePage};
  SimulatedOdbc Odbc{Journal};
  SimulatedRemoval Removal{Journal, Disk, Odbc};
  SimulatedServer Server{Journal, Odbc};
  SimulatedProcesses Programs{Journal, Disk};
  SimulatedScripting Scripting{Journal, Disk};
  SimulatedSettings Settings{Journal};
  SimulatedClock Clock;
  SimulatedWindows Windows{Journal, Disk};
  /// The interfaces that the wizard works with.
  Machine Parts;
};

}  // namespace talu
