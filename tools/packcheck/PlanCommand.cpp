#include "PlanCommand.h"

#include <ostream>
#include <stdexcept>

#include "PlanAccount.h"
#include "PlanComparison.h"

namespace talu::packcheck {
namespace {

/// The event, and what the server could not tell of it.
void WriteJson(const JournalEvent& event, const SimulatedServer& server, std::ostream& out) {
  if (event.Kind != "sql" || server.Doubt().empty()) {
    out << event.ToJson() << '\n';
    return;
  }
  JournalEvent doubted = event;
  doubted.Fields.emplace_back("doubt", server.Doubt());
  out << doubted.ToJson() << '\n';
}

void RequireEmpty(const std::filesystem::path& folder) {
  if (std::filesystem::exists(folder) && !std::filesystem::is_empty(folder)) {
    throw std::runtime_error("--save: " + folder.string() + " is not empty");
  }
}

}  // namespace

int PlanCommand(const PlanCommandOptions& options, std::ostream& out) {
  if (!options.Save.empty()) RequireEmpty(options.Save);
  std::ostream nowhere(nullptr);
  const bool compare = !options.Compare.empty();
  PlanAccount account(options.Run, options.Json || compare ? nowhere : out, options.Listed);
  std::vector<std::string> shortcuts;
  PlannedRun run(options.Run, [&](PlannedRun& sofar, const JournalEvent& event) {
    if (options.Json) WriteJson(event, sofar.Machine.Server, out);
    if (event.Kind == "shortcut" && !event.Error) shortcuts.push_back(event.Text("path"));
    account.Take(sofar, event);
  });
  account.End(run);
  if (!options.Save.empty()) run.Machine.Disk.SaveTo(options.Save, options.Run.PackPath);
  if (compare) return IsAsPlanned(run, options.Run, shortcuts, options.Compare, out) ? 0 : 1;
  return run.Finished() && account.Failures() == 0 ? 0 : 1;
}

}  // namespace talu::packcheck
