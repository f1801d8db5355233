#include "takeback/Paths.h"

#include <algorithm>

#include "runtime/NamesOnWindows.h"
#include "runtime/TextFunctions.h"

namespace talu {
namespace {

bool IsLetter(char character) {
  return (character >= 'A' && character <= 'Z') || (character >= 'a' && character <= 'z');
}

/// A dot or a blank at the end is one that Windows takes away: the name is another one, or "..",
/// when the path is read again.
bool IsName(const std::string& name) {
  return !name.empty() && !name.ends_with('.') && !name.ends_with(' ') &&
         !HasForbiddenCharacter(name) && !IsDeviceName(name);
}

}  // namespace

bool IsOnDrive(std::string_view path) {
  return path.size() >= 2 && IsLetter(path[0]) && path[1] == ':';
}

std::string CleanPath(std::string_view path) {
  const std::string whole = Replace(path, "/", "\\");
  std::string start;
  std::string_view rest(whole);
  if (IsOnDrive(whole) && whole.size() > 2 && whole[2] == '\\') {
    start = whole.substr(0, 2);
    rest.remove_prefix(2);
  } else if (whole.starts_with("\\\\") && whole.size() > 2 && whole[2] != '\\') {
    start = "\\";
    rest.remove_prefix(1);
  } else {
    return "";
  }
  // The first component, here a drive or nothing, is never taken away by "..".
  const std::string below = NormalizedPath("x" + std::string(rest)).substr(1);
  const std::vector<std::string> names = Split(below, '\\');
  if (names.size() > 1 && !std::all_of(names.begin() + 1, names.end(), IsName)) return "";
  // A server and its share, neither of which "." (a device) or "?" can be.
  if (start == "\\" && names.size() < 3) return "";
  return start + below;
}

bool SamePath(std::string_view one, std::string_view other) {
  return UCase(one) == UCase(other);
}

std::optional<std::string> Below(std::string_view folder, std::string_view path) {
  // Upper case may have another length in bytes: compared name by name.
  while (!folder.empty()) {
    const std::size_t folderEnd = std::min(folder.find('\\'), folder.size());
    const std::size_t pathEnd = std::min(path.find('\\'), path.size());
    if (!SamePath(folder.substr(0, folderEnd), path.substr(0, pathEnd))) return std::nullopt;
    folder.remove_prefix(std::min(folderEnd + 1, folder.size()));
    if (pathEnd == path.size()) return std::nullopt;
    path.remove_prefix(pathEnd + 1);
  }
  if (path.empty()) return std::nullopt;
  return std::string(path);
}

std::string_view NameOf(std::string_view path) {
  return path.substr(path.rfind('\\') + 1);
}

std::string_view FolderOf(std::string_view path) {
  const std::size_t at = path.rfind('\\');
  return at == std::string_view::npos ? std::string_view() : path.substr(0, at);
}

}  // namespace talu
