#pragma once

#include <filesystem>
#include <string>

#include "RandomPack.h"

namespace talu::packcheck {

/// Installs the pack in `folder` in every type and mode and takes each installation back, without
/// and with its databases. Returns what breaks a promise, a line each: the plan of the taking back
/// is what comes, and what was not there before is named as staying; nothing that was there is
/// gone. `clean`: check finds nothing in the pack.
std::string BrokenByTakingBack(const RandomPack& pack, const std::filesystem::path& folder,
                               bool clean);

}  // namespace talu::packcheck
