#pragma once

#include "CheckConfiguration.h"
#include "CheckPack.h"

namespace talu::packcheck {

/// Checks the three sets of scripts, with one file in memory at a time.
void CheckScripts(CheckedPack& pack, const Configuration& configuration);

}  // namespace talu::packcheck
