#include "CheckScripts.h"

#include <array>

#include "CheckScriptSet.h"

namespace talu {
namespace {

/// Tells which databases an installation changes that the backup before it does not know.
void CheckBackedUp(const char* installation, const ScriptSet& built, const ScriptSet& searched,
                   Findings& findings) {
  for (const SqlText& used : built.Used()) {
    if (searched.Backup().Covers(BareName(used.Text))) continue;
    findings.Add("SQL-BACKUP-MISSED", used.Place,
                 {installation, used.Text, "the scripts of " + searched.Key()});
  }
}

}  // namespace

void CheckScripts(CheckedPack& pack, const Configuration& configuration) {
  const std::size_t backedUp = configuration.Values("DBSript").size();
  std::array<ScriptSet, 3> sets = {ScriptSet(pack, "Fresh", "FreshDBSript", backedUp),
                                   ScriptSet(pack, "Demo", "DemoDBSript", backedUp),
                                   ScriptSet(pack, "Upgrade", "UpgradeDBSript", backedUp)};
  for (ScriptSet& set : sets) set.Check(configuration);
  auto& [fresh, demo, upgrade] = sets;
  CheckBackedUp("A fresh", fresh, fresh, pack.Findings);
  CheckBackedUp("A demo", demo, upgrade, pack.Findings);
  CheckBackedUp("An upgrade", upgrade, demo, pack.Findings);
}

}  // namespace talu
