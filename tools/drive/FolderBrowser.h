#pragma once

#include <windows.h>

#include <optional>
#include <string>

namespace talu::drive {

/// Expands the tree of the shell's folder browser down to `folder`, a path such as "C:\Program
/// Files", and selects it. Returns an empty text when it is selected and OK can be clicked, what is
/// there instead when not, and nothing when Setup does not answer. The tree is filled only while it
/// is expanded, so try again. Raises std::runtime_error when the system does not let the tree be
/// read.
std::optional<std::string> SelectFolder(HWND dialog, const std::string& folder);

}  // namespace talu::drive
