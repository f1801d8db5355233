#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace talu {

/// An absolute path as Windows reads it: backslashes only, none doubled nor at the end, no "..".
/// Empty for any other path, a device, and one with a name that no file has.
std::string CleanPath(std::string_view path);

/// Whether two clean paths, or names, are the same to Windows.
bool SamePath(std::string_view one, std::string_view other);

/// What of the clean `path` stands below the clean `folder`; nothing when it does not.
std::optional<std::string> Below(std::string_view folder, std::string_view path);

/// The part after the last backslash, and the one before it (empty without a backslash).
std::string_view NameOf(std::string_view path);
std::string_view FolderOf(std::string_view path);

/// Whether the path is on a drive with a letter, and not a place on the network.
bool IsOnDrive(std::string_view path);

}  // namespace talu
