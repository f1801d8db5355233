#include "PlanTakeBack.h"

#include <optional>
#include <ostream>

#include "takeback/Commands.h"

namespace talu::packcheck {

bool TakeBackPlanned(PlannedRun& run, const PlanCommandOptions& options, std::ostream& out) {
  // The wizard's process has ended, and its files are closed.
  run.Wizard.TextFiles.Close(run.Wizard.State.LogFileNumber);
  run.Wizard.TextFiles.Close(run.Wizard.State.UninstallFileNumber);
  Machine parts = run.Machine.Parts;
  parts.AppPath = run.Wizard.State.AppFolderPath;
  std::vector<std::string> arguments = {"run", "--pack", options.Run.PackPath};
  if (options.DropDatabases) arguments.emplace_back("--drop-databases");
  if (options.Json) arguments.emplace_back("--json");
  if (!options.Json) out << "\nTaken back\n";
  const auto take = [&](std::string_view line) {
    out << (options.Json ? "" : "  ") << line << '\n';
  };
  const CommandLineHost host = {.Out = take, .Error = take, .Environment = [](const std::string&) {
                                  return std::optional<std::string>();
                                }};
  return TakeBackCommand(arguments, parts, run.Machine.Removal, "Uninstall.exe", host) ==
         kTakenBack;
}

}  // namespace talu::packcheck
