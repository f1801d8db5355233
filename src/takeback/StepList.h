#pragma once

#include <vector>

#include "takeback/Site.h"
#include "takeback/TakeBackPlan.h"

namespace talu {

/// All that the installations left, in the order in which it is taken back: what was made last
/// first, each kind from the last record to the first, every thing once. Raises what asking for
/// the Windows folder raises, and for the pack's list of settings files where it is at hand.
std::vector<Step> ListSteps(const Site& site);

}  // namespace talu
