#include "PlanCommand.h"

#include <ostream>
#include <stdexcept>

#include "PlanAccount.h"

namespace talu::packcheck {
namespace {

void RequireEmpty(const std::filesystem::path& folder) {
  if (std::filesystem::exists(folder) && !std::filesystem::is_empty(folder)) {
    throw std::runtime_error("--save: " + folder.string() + " is not empty");
  }
}

}  // namespace

int PlanCommand(const PlanCommandOptions& options, std::ostream& out) {
  if (!options.Save.empty()) RequireEmpty(options.Save);
  std::ostream nowhere(nullptr);
  PlanAccount account(options.Run, options.Json ? nowhere : out, options.Listed);
  PlannedRun run(options.Run, [&](PlannedRun& sofar, const JournalEvent& event) {
    if (options.Json) out << event.ToJson() << '\n';
    account.Take(sofar, event);
  });
  account.End(run);
  if (!options.Save.empty()) run.Machine.Disk.SaveTo(options.Save, options.Run.PackPath);
  return run.Finished() && account.Failures() == 0 ? 0 : 1;
}

}  // namespace talu::packcheck
