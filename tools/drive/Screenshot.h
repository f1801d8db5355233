#pragma once

#include <windows.h>

#include <string>

namespace talu::drive {

/// Writes what the screen shows inside `area` (cut to the screen) as a PNG file, once two looks in
/// a row have been the same or a second is over. The folder of `file` is made if need be. Raises
/// std::runtime_error when there is nothing to see or the file cannot be written.
void SaveScreenshot(const RECT& area, const std::string& file);

/// The whole screen, all monitors.
RECT ScreenArea();

}  // namespace talu::drive
