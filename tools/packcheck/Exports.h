#pragma once

#include <string_view>

#include "platform/simulated/SimulatedDisk.h"

namespace talu::packcheck {

/// Whether a library of Windows exports this name; false for a file that is none. Reads no more of
/// it than that takes. Raises std::runtime_error with a line for the user when it cannot be read.
bool Exports(const FileContent& library, std::string_view name);

}  // namespace talu::packcheck
