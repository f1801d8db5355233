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

/// What the operator chooses and types, and what the machine and its server are like before. Texts
/// are in the Windows-1252 code page.
struct PlanOptions {
  /// The host folder that is the pack.
  std::filesystem::path Pack;
  InstallType Type = InstallType::Fresh;
  InstallMode Mode = InstallMode::Server;
  std::string Server = "SERVER";
  std::string User = "sa";
  std::string Password = "password";
  /// Chosen in the location page's folder browser. Empty: what the page shows; C:\Program Files
  /// where it shows nothing.
  std::string InstallPath;
  /// Chosen as the existing application folder, whose box is ticked. Empty: the box stays clear.
  std::string OldPath;
  /// Where the machine has the pack.
  std::string PackPath = "D:\\Pack";
  /// The clock stands still.
  DateTime Now{2012, 3, 7, 9, 5};
  /// A host folder that is the machine's C: at the start. Empty: a new machine's.
  std::filesystem::path Disk;

  /// On the server already.
  std::vector<std::string> Databases;
  std::vector<std::string> Logins;
  std::vector<StatementFailure> FailSql;
  /// The server keeps nothing and accepts every statement but those of `FailSql`.
  bool AcceptAll = false;
  /// The request (from 1) that fails, with this run-time error; 0: none does.
  int FailRequest = 0;
  std::int32_t FailRequestError = error::kDeviceIO;
  /// How add-ons end, by file name; 0 where none is given.
  std::map<std::string, std::int32_t> ExitCodes;
  /// The scripting host's collection, in order. Empty: a new machine's.
  std::vector<std::string> SpecialFolders;
  /// On every page with a Back button the operator goes back once and comes again.
  bool Twice = false;
};

/// One installation, planned from the start to where it ends: the real pages, build and deployment
/// on a simulated machine, with an operator who chooses, types and clicks as a person would.
class PlannedRun {
 public:
  /// Takes each event of the journal as it happens, in place of the journal.
  using Watcher = std::function<void(PlannedRun& run, const JournalEvent& event)>;

  /// Runs the plan. Raises std::runtime_error with a line for the user when the pack or the disk
  /// cannot be put on a Windows machine, std::filesystem::filesystem_error when it cannot be read.
  explicit PlannedRun(const PlanOptions& options, const Watcher& watcher = {});

  /// Whether the operator came to Finish.
  bool Finished() const { return stop_.empty(); }
  /// Why it went no further; empty when it finished.
  const std::string& Stop() const { return stop_; }

  /// As the installation left it. Its journal is empty when a watcher took the events.
  SimulatedMachine Machine;
  talu::Wizard Wizard;

 private:
  void SetUp(const PlanOptions& options);

  std::string stop_;
};

/// Runs a plan and keeps its journal. Raises as `PlannedRun` does.
std::unique_ptr<PlannedRun> Plan(const PlanOptions& options);

}  // namespace talu::packcheck
