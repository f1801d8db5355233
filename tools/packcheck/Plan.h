#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "Wizard.h"
#include "platform/simulated/SimulatedMachine.h"

namespace talu::packcheck {

/// The installation types and modes, numbered as in `InstallState`.
enum class InstallType { Fresh, Demo, Upgrade };
enum class InstallMode { Server, Client };

/// Statements that contain `Text` fail with this error.
struct StatementFailure {
  std::string Text;
  RuntimeError Error = StatementError("The statement was told to fail.");
};

/// What the operator chooses and types, and the initial state of the machine and its server.
struct PlanOptions {
  /// The host folder with the pack.
  std::filesystem::path Pack;
  InstallType Type = InstallType::Fresh;
  InstallMode Mode = InstallMode::Server;
  std::string Server = "SERVER";
  std::string User = "sa";
  std::string Password = "password";
  /// Chosen in the location page's folder browser. Empty: what the page shows, or C:\Program Files
  /// when it shows nothing.
  std::string InstallPath;
  /// Chosen as the existing application folder, with its box ticked. Empty: the box stays clear.
  std::string OldPath;
  /// The path of the pack on the machine.
  std::string PackPath = "D:\\Pack";
  /// That of the machine's text files.
  int CodePage = 1252;
  /// The clock stands still.
  DateTime Now{2012, 3, 7, 9, 5};
  /// A host folder with the initial contents of C:. Empty: those of a new machine.
  std::filesystem::path Disk;

  /// What is on the server already.
  std::vector<std::string> Databases;
  std::vector<std::string> Logins;
  std::vector<StatementFailure> FailSql;
  /// The server keeps nothing and accepts every statement except those of `FailSql`.
  bool AcceptAll = false;
  /// The request (from 1) that fails with this run-time error; 0 for none.
  int FailRequest = 0;
  std::int32_t FailRequestError = error::kDeviceIO;
  /// The exit codes of add-ons, by file name; 0 for others.
  std::map<std::string, std::int32_t> ExitCodes;
  /// The scripting host's collection, in order. Empty: that of a new machine.
  std::vector<std::string> SpecialFolders;
  /// On every page with a Back button the operator goes back once and forward again.
  bool Twice = false;
};

/// One planned installation, from the start to its end: the real pages, build and deployment on a
/// simulated machine, with an operator who chooses, types and clicks as a person would.
class PlannedRun {
 public:
  /// Gets each journal event as it happens; the journal then stays empty.
  using Watcher = std::function<void(PlannedRun& run, const JournalEvent& event)>;

  /// Runs the plan. Raises std::runtime_error with a line for the user when the pack or the disk
  /// cannot exist on Windows or the code page is unknown, std::filesystem::filesystem_error when it
  /// cannot be read.
  explicit PlannedRun(const PlanOptions& options, const Watcher& watcher = {});

  /// Whether the operator reached Finish.
  bool Finished() const { return stop_.empty(); }
  /// Why it stopped before; empty when it finished.
  const std::string& Stop() const { return stop_; }

  /// The path of the script that is being read, or was read last, and how many have been opened.
  const std::string& ScriptPath() const { return scriptPath_; }
  int ScriptsOpened() const { return scriptsOpened_; }

  /// The machine after the installation. Its journal is empty when there is a watcher.
  SimulatedMachine Machine;
  talu::Wizard Wizard;

 private:
  void SetUp(const PlanOptions& options);

  std::string stop_;
  std::string scriptPath_;
  int scriptsOpened_ = 0;
};

/// Runs a plan and keeps its journal. Raises as `PlannedRun` does.
std::unique_ptr<PlannedRun> Plan(const PlanOptions& options);

}  // namespace talu::packcheck
