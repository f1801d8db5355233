#include "PlanCommand.h"

#include <ostream>
#include <stdexcept>
#include <string>

#include "PlanAccount.h"
#include "PlanComparison.h"
#include "PlanTakeBack.h"
#include "pages/FrmSQLNonQuery.h"

namespace talu::packcheck {
namespace {

void RequireEmpty(const std::filesystem::path& folder) {
  if (std::filesystem::exists(folder) && !std::filesystem::is_empty(folder)) {
    throw std::runtime_error("--save: " + folder.string() + " is not empty");
  }
}

/// The event in JSON. A statement of a script has the place where its batch begins, and what the
/// server could not tell of it.
std::string Line(PlannedRun& run, const JournalEvent& event) {
  if (event.Kind != "sql") return event.ToJson();
  JournalEvent placed = event;
  if (const auto& origin = run.Wizard.Page<FrmSQLNonQuery>().Build.Executing()) {
    placed.Fields.insert(placed.Fields.begin() + 1,
                         {{"script", origin->Script}, {"line", std::int64_t{origin->Line}}});
  }
  if (const std::string doubt = run.Machine.Server.Doubt(); !doubt.empty()) {
    placed.Fields.emplace_back("doubt", doubt);
  }
  return placed.ToJson();
}

}  // namespace

int PlanCommand(const PlanCommandOptions& options, std::ostream& out) {
  if (!options.Save.empty()) RequireEmpty(options.Save);
  std::ostream nowhere(nullptr);
  const bool compare = !options.Compare.empty();
  PlanAccount account(options.Run, options.Json || compare ? nowhere : out, options.Listed);
  std::vector<std::string> shortcuts;
  PlannedRun run(options.Run, [&](PlannedRun& sofar, const JournalEvent& event) {
    if (options.Json) out << Line(sofar, event) << '\n';
    if (event.Kind == "shortcut" && !event.Error) shortcuts.push_back(event.Text("path"));
    account.Take(sofar, event);
  });
  account.End(run);
  const bool left = options.TakeBack && !TakeBackPlanned(run, options, out);
  if (!options.Save.empty()) run.Machine.Disk.SaveTo(options.Save, options.Run.PackPath);
  if (compare) return IsAsPlanned(run, options.Run, shortcuts, options.Compare, out) ? 0 : 1;
  return run.Finished() && account.Failures() == 0 && !left ? 0 : 1;
}

}  // namespace talu::packcheck
