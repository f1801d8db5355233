#pragma once

#include "CheckConfiguration.h"
#include "CheckPack.h"

namespace talu::packcheck {

/// Checks what is deployed: the application's files, data sources, components, shortcuts, settings
/// files and add-ons.
void CheckContent(CheckedPack& pack, const Configuration& configuration);

}  // namespace talu::packcheck
