#include "Plan.h"

#include <new>
#include <stdexcept>

#include "Main.h"
#include "PlanOperator.h"
#include "runtime/TextFunctions.h"

namespace talu::packcheck {
namespace {

/// Creates the folder, since one that is chosen in a browser exists.
void MakeChosenFolder(SimulatedDisk& disk, const std::string& path) {
  if (!path.empty()) disk.MakeFolders(path);
}

}  // namespace

PlannedRun::PlannedRun(const PlanOptions& options, const Watcher& watcher)
    : Machine(options.PackPath, options.CodePage), Wizard(Machine.Parts) {
  SetUp(options);
  if (watcher) {
    Machine.Journal.Watch([this, &watcher](const JournalEvent& event) {
      try {
        watcher(*this, event);
      } catch (const std::bad_alloc&) {
        // This program is out of memory, not the simulated machine: the wizard must not handle it.
        throw std::runtime_error(StandardDescription(error::kOutOfMemory));
      }
    });
  }
  Machine.Journal.OnNote = [this](std::string_view what, const std::string& path) {
    if (what != "open" || !Contains(path, "\\SQLScript\\")) return;
    scriptPath_ = path;
    ++scriptsOpened_;
  };
  Machine.Windows.Run([this] { Main(Wizard); });
  stop_ = PlanOperator(options, Machine.Windows).Play();
  Machine.Journal.Watch({});
  Machine.Journal.OnNote = {};
}

void PlannedRun::SetUp(const PlanOptions& options) {
  SimulatedDisk& disk = Machine.Disk;
  if (!options.Disk.empty()) disk.AddHostFolder(options.Disk, "C:");
  disk.AddHostFolder(options.Pack, options.PackPath);
  MakeChosenFolder(disk, options.InstallPath);
  MakeChosenFolder(disk, options.OldPath);
  if (!options.SpecialFolders.empty()) {
    Machine.Scripting.SpecialFolders = options.SpecialFolders;
    for (const std::string& folder : options.SpecialFolders) MakeChosenFolder(disk, folder);
  }
  Machine.Clock.Time = options.Now;

  SimulatedServer& server = Machine.Server;
  server.AcceptAll = options.AcceptAll;
  for (const std::string& name : options.Databases) server.Databases.insert(UCase(name));
  for (const std::string& name : options.Logins) server.Logins.insert(UCase(name));
  for (const StatementFailure& failure : options.FailSql) {
    server.FailStatements(failure.Text, failure.Error);
  }
  for (const auto& [name, code] : options.ExitCodes) {
    Machine.Programs.ExitCodes[UCase(name)] = code;
  }
  if (options.FailRequest != 0) {
    Machine.Journal.FailRequest(options.FailRequest, RuntimeError(options.FailRequestError));
  }
}

std::unique_ptr<PlannedRun> Plan(const PlanOptions& options) {
  return std::make_unique<PlannedRun>(options);
}

}  // namespace talu::packcheck
