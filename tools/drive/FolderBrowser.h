#pragma once

#include <windows.h>

#include <optional>
#include <string>

namespace talu::drive {

/// Unfolds the tree of the shell's folder browser down to `folder`, a path like "C:\Program Files",
/// and selects it. Returns an empty text when it is selected and OK can be clicked, otherwise what
/// is there instead, and nothing when Setup does not answer. The tree fills only while it is
/// unfolded, so it pays to try again. Raises std::runtime_error when the system does not let the
/// tree be read.
std::optional<std::string> SelectFolder(HWND dialog, const std::string& folder);

}  // namespace talu::drive
