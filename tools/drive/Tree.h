#pragma once

#include <string>

namespace talu::drive {

/// The difference between a pack's application folder, `application`, and the folder `installed`:
/// the first path that is missing or differs, and how many do; empty when every folder and file is
/// there, byte for byte. Ignores what the wizard does not copy (database files), what it writes
/// itself (log, record, the settings files that the pack's configuration names), and additional
/// files. Raises std::runtime_error when either folder cannot be read.
std::string TreeDifference(const std::string& application, const std::string& installed);

}  // namespace talu::drive
