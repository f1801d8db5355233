#pragma once

#include <string>

namespace talu::drive {

/// What of the folder `pack`/Application, a pack's, is not in the folder `installed`: the first
/// that is missing or differs, by path, and how many; empty when every folder and file is there,
/// byte for byte. Not looked at is what the wizard does not copy (database files) and what it
/// writes itself (log, record, the settings files that the pack's configuration names), nor what
/// else is in `installed`. Raises std::runtime_error when either folder cannot be read.
std::string TreeDifference(const std::string& application, const std::string& installed);

}  // namespace talu::drive
