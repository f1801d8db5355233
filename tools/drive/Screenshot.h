#pragma once

#include <windows.h>

#include <string>

namespace talu::drive {

/// Writes the contents of the screen inside `area` (clipped to the screen) as a PNG file, once two
/// captures in a row are the same or after a second. Creates the folder of `file` if needed. Raises
/// std::runtime_error when there is nothing to see or the file cannot be written.
void SaveScreenshot(const RECT& area, const std::string& file);

/// The whole screen, all monitors.
RECT ScreenArea();

}  // namespace talu::drive
