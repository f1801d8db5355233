#pragma once

#include <string>
#include <string_view>

namespace talu {

/// What Windows makes of a path with a drive: backslashes only, none doubled nor at the end; "."
/// and
/// ".." gone; of a component's last dots one less, and at the end of a path that no backslash ends
/// no blank and no dot. So a blank at the end of a name is lost when the name itself is made, but
/// counts where something below it is looked for.
std::string NormalizedPath(std::string_view path);

/// Whether the name has a character that no name may have; "/" and "\" are none here.
bool HasForbiddenCharacter(std::string_view name);

/// Whether a name means a device in every folder, whatever its ending: CON, nul.txt.
bool IsDeviceName(std::string_view name);

}  // namespace talu
