#include "Drives.h"

#include <algorithm>
#include <stdexcept>
#include <system_error>
#include <vector>

#include "Text.h"

namespace talu::standin {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kPathNotFound = "3(The system cannot find the path specified.)";
constexpr std::string_view kNameIsWrong =
    "123(The filename, directory name, or volume label syntax is incorrect.)";
constexpr std::string_view kAccessDenied = "5(Access is denied.)";

char UpperLetter(char c) {
  return c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c;
}
bool IsLetter(char c) {
  return UpperLetter(c) >= 'A' && UpperLetter(c) <= 'Z';
}

/// The entry of `folder` that Windows would use for `name`; a new name when there is none.
fs::path FindEntry(const fs::path& folder, const std::string& name, bool& exists) {
  std::error_code error;
  exists = fs::exists(fs::symlink_status(folder / name, error));
  if (exists) return folder / name;
  for (const auto& entry : fs::directory_iterator(folder, error)) {
    if (SameName(entry.path().filename().string(), name)) {
      exists = true;
      return entry.path();
    }
  }
  return folder / name;
}

/// The folders and the file of a path with a drive letter.
std::vector<std::string> PartsOf(std::string_view windowsPath) {
  std::vector<std::string> parts;
  for (std::size_t at = 2; at < windowsPath.size();) {
    const std::size_t end = std::min(windowsPath.find_first_of("\\/", at), windowsPath.size());
    std::string part(windowsPath.substr(at, end - at));
    at = end + 1;
    if (part == "..") {
      if (!parts.empty()) parts.pop_back();
      continue;
    }
    while (!part.empty() && (part.back() == ' ' || part.back() == '.')) part.pop_back();
    if (!part.empty()) parts.push_back(std::move(part));
  }
  return parts;
}

}  // namespace

void Drives::Protect(const std::string& windowsFolder) {
  if (windowsFolder.size() < 3 || !IsLetter(windowsFolder[0]) || windowsFolder[1] != ':') {
    throw std::invalid_argument("a folder is given as C:\\FOLDER, not \"" + windowsFolder + "\"");
  }
  std::vector<std::string> folder = PartsOf(windowsFolder);
  folder.insert(folder.begin(), windowsFolder.substr(0, 1));
  protected_.push_back(std::move(folder));
}

void Drives::Add(std::string_view mapping) {
  if (mapping.size() < 3 || !IsLetter(mapping[0]) || mapping[1] != '=') {
    throw std::invalid_argument("a drive is given as C=FOLDER, not \"" + std::string(mapping) +
                                "\"");
  }
  const fs::path folder(mapping.substr(2));
  std::error_code error;
  if (!fs::is_directory(folder, error)) {
    throw std::invalid_argument("the folder of drive " + std::string(1, mapping[0]) +
                                ": does not exist: " + folder.string());
  }
  folders_[UpperLetter(mapping[0])] = fs::absolute(folder);
}

std::string Drives::WindowsPath(const fs::path& file) const {
  for (const auto& [letter, folder] : folders_) {
    const fs::path inside = file.lexically_relative(folder);
    if (inside.empty() || *inside.begin() == "..") continue;
    std::string path = std::string(1, letter) + ":\\" + inside.string();
    std::ranges::replace(path, '/', '\\');
    return path;
  }
  return file.string();
}

FoundPath Drives::Find(std::string_view windowsPath) const {
  FoundPath found;
  const auto fail = [&found](std::string_view reason) {
    found.SystemError = reason;
    return found;
  };
  if (windowsPath.size() < 3 || windowsPath[1] != ':' || !IsLetter(windowsPath[0])) {
    return fail(kNameIsWrong);
  }
  const auto drive = folders_.find(UpperLetter(windowsPath[0]));
  if (drive == folders_.end()) return fail(kPathNotFound);
  const bool isWrong = std::any_of(windowsPath.begin() + 2, windowsPath.end(), [](char c) {
    return static_cast<unsigned char>(c) < ' ' ||
           std::string_view("<>:\"|?*").find(c) != std::string_view::npos;
  });
  if (isWrong || (windowsPath[2] != '\\' && windowsPath[2] != '/')) return fail(kNameIsWrong);

  const std::vector<std::string> parts = PartsOf(windowsPath);
  found.IsProtected = std::ranges::any_of(protected_, [&](const auto& folder) {
    return folder.size() <= parts.size() + 1 &&
           SameName(folder.front(), windowsPath.substr(0, 1)) &&
           std::equal(folder.begin() + 1, folder.end(), parts.begin(), SameName);
  });
  if (parts.empty()) return fail(kAccessDenied);  // the root is not a file
  fs::path folder = drive->second;
  std::error_code error;
  for (std::size_t i = 0; i + 1 < parts.size(); ++i) {
    bool exists = false;
    folder = FindEntry(folder, parts[i], exists);
    if (!exists || !fs::is_directory(folder, error)) return fail(kPathNotFound);
  }
  found.File = FindEntry(folder, parts.back(), found.Exists);
  found.FolderExists = true;
  if (found.Exists && fs::is_directory(found.File, error)) {
    found.FolderExists = false;
    return fail(kAccessDenied);
  }
  return found;
}

}  // namespace talu::standin
