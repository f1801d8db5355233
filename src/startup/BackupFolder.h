#pragma once

#include <string>

#include "platform/Clock.h"

namespace talu {

/// The folder for backups: next to the application folder and named after it. Raises 5 when
/// `appFolderPath` has no backslash.
std::string BackupFolderFor(const std::string& appFolderPath, const std::string& appFolderName);

/// Day, month, year, hour and minute joined by "_", without leading zeros.
std::string DateStamp(const DateTime& time);

}  // namespace talu
