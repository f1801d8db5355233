#include "CheckScripts.h"

#include <array>

#include "CheckScriptSet.h"

namespace talu::packcheck {
namespace {

/// Reports the databases that an installation changes and the backup before it misses.
void CheckBackedUp(std::string_view installation, const ScriptSet& built, const ScriptSet& searched,
                   Findings& findings) {
  for (const SqlText& used : built.Used()) {
    if (searched.Backup().Covers(BareName(used.Text))) continue;
    findings.Add("SQL-BACKUP-MISSED", used.Place,
                 {std::string(installation), used.Text, "the scripts of " + searched.Key()});
  }
}

}  // namespace

void CheckScripts(CheckedPack& pack, const Configuration& configuration) {
  const std::size_t backedUp = configuration.Values("DBSript").size();
  std::array<ScriptSet, 3> sets = {ScriptSet(pack, kTypeScripts[0], backedUp),
                                   ScriptSet(pack, kTypeScripts[1], backedUp),
                                   ScriptSet(pack, kTypeScripts[2], backedUp)};
  for (ScriptSet& set : sets) {
    if (&set == &sets[2]) {
      set.Server().Begin(sets[0].Server());
      set.Server().Begin(sets[1].Server());
    }
    set.Check(configuration);
  }
  for (std::size_t type = 0; type < sets.size(); ++type) {
    CheckBackedUp(kTypeScripts[type].WithArticle, sets[type], sets[ScannedType(type)],
                  pack.Findings);
  }
}

}  // namespace talu::packcheck
