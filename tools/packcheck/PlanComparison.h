#pragma once

#include <filesystem>
#include <iosfwd>
#include <string>
#include <vector>

#include "Plan.h"

namespace talu::packcheck {

/// Compares a planned run with a machine after the same installation, whose C: is the folder
/// `drive`: the tree below the chosen folder, byte for byte, and whether the `shortcuts` exist.
/// Files of the server (.mdf, .ldf, .bkp) may be there besides, with any contents. Writes to `out`,
/// in UTF-8 and without passwords, a line for each difference, or how much was compared when there
/// is none. Returns whether there is none. Raises std::runtime_error when the machine's files
/// cannot be read.
bool IsAsPlanned(PlannedRun& run, const PlanOptions& options,
                 const std::vector<std::string>& shortcuts, const std::filesystem::path& drive,
                 std::ostream& out);

}  // namespace talu::packcheck
