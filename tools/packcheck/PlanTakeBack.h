#pragma once

#include <iosfwd>

#include "PlanCommand.h"

namespace talu::packcheck {

/// Takes a planned installation back on its machine, as the program in its folder would with the
/// pack at hand, and tells on `out` what goes and what stays. Returns whether nothing is left.
bool TakeBackPlanned(PlannedRun& run, const PlanCommandOptions& options, std::ostream& out);

}  // namespace talu::packcheck
