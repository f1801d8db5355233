#include "Tree.h"

#include <windows.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <stdexcept>
#include <string_view>
#include <utility>
#include <vector>

#include "Text.h"

namespace talu::drive {

namespace {

/// The number of differences reported by name.
constexpr std::size_t kTold = 5;

struct Closer {
  void operator()(void* handle) const { CloseHandle(handle); }
};
using File = std::unique_ptr<void, Closer>;

/// Paths relative to the root, with a backslash before each name; true for a folder.
using Entries = std::map<std::wstring, bool>;

/// The folder in the form without a length limit.
std::wstring Root(const std::string& folder) {
  std::wstring path(GetFullPathNameW(Wide(folder).c_str(), 0, nullptr, nullptr), L'\0');
  path.resize(GetFullPathNameW(Wide(folder).c_str(), static_cast<DWORD>(path.size()), path.data(),
                               nullptr));
  while (path.ends_with(L'\\')) path.pop_back();
  if (path.starts_with(L"\\\\?\\")) return path;
  return path.starts_with(L"\\\\") ? L"\\\\?\\UNC" + path.substr(1) : L"\\\\?\\" + path;
}

void List(const std::wstring& root, const std::wstring& below, Entries& entries) {
  WIN32_FIND_DATAW found = {};
  const HANDLE search = FindFirstFileW((root + below + L"\\*").c_str(), &found);
  DWORD error = search == INVALID_HANDLE_VALUE ? GetLastError() : ERROR_SUCCESS;
  std::vector<std::wstring> folders;
  while (error == ERROR_SUCCESS) {
    const std::wstring_view name = found.cFileName;
    if (name != L"." && name != L"..") {
      const bool folder = (found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
      std::wstring path = below;
      path.append(L"\\").append(name);
      if (folder) folders.push_back(path);
      entries.emplace(std::move(path), folder);
    }
    if (!FindNextFileW(search, &found)) error = GetLastError();
  }
  if (search != INVALID_HANDLE_VALUE) FindClose(search);
  if (error != ERROR_NO_MORE_FILES) {
    throw std::runtime_error("cannot read the folder " + Quoted(Utf8(root.substr(4) + below)) +
                             " (error " + std::to_string(error) + ")");
  }
  for (const std::wstring& folder : folders) List(root, folder, entries);
}

/// What the wizard itself writes into the application folder, as relative paths: the log, the
/// record, and the settings files named in the configuration in the pack's folder, if there is one.
std::vector<std::wstring> Written(const std::wstring& pack) {
  std::vector<std::wstring> paths = {L"\\Ta-luErrLog.txt", L"\\Uninstall.dat"};
  std::ifstream file(std::filesystem::path(pack + L"\\AppCfg.txt"), std::ios::binary);
  bool named = false;
  for (std::string line; std::getline(file, line);) {
    if (line.ends_with('\r')) line.pop_back();
    if (line == "WriteSettings") named = true;
    if (line == "}") named = false;
    const std::string path = line.substr(0, line.find(','));
    if (named && path.find(".txt") != std::string::npos) paths.push_back(Wide(DecodeFile(path)));
  }
  return paths;
}

/// The wizard's own rule, case-sensitive.
bool IsDatabaseFile(const std::wstring& path) {
  return path.ends_with(L".mdf") || path.ends_with(L".ldf");
}

File OpenFile(const std::wstring& path) {
  const HANDLE file = CreateFileW(path.c_str(), GENERIC_READ,
                                  FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                  OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN, nullptr);
  return File(file == INVALID_HANDLE_VALUE ? nullptr : file);
}

/// The next bytes of a file, empty at its end. Raises std::runtime_error.
std::string_view Next(const File& file, std::vector<char>& buffer) {
  DWORD size = 0;
  if (!ReadFile(file.get(), buffer.data(), static_cast<DWORD>(buffer.size()), &size, nullptr)) {
    throw std::runtime_error("cannot be read (error " + std::to_string(GetLastError()) + ")");
  }
  return {buffer.data(), size};
}

/// How the installed file differs from the pack's; empty when it does not. Raises
/// std::runtime_error when the pack's file cannot be read.
std::string FileDifference(const std::wstring& wanted, const std::wstring& there) {
  const File original = OpenFile(wanted);
  if (!original) throw std::runtime_error("cannot read " + Quoted(Utf8(wanted.substr(4))));
  const File copy = OpenFile(there);
  if (!copy) return "cannot be read (error " + std::to_string(GetLastError()) + ")";
  std::vector<char> one(65536);
  std::vector<char> other(65536);
  for (;;) {
    const std::string_view bytes = Next(original, one);
    try {
      if (Next(copy, other) != bytes) return "differs";
    } catch (const std::runtime_error& error) {
      return error.what();
    }
    if (bytes.empty()) return {};
  }
}

/// The same for a file or folder, looked up among those that exist.
std::string Difference(const std::wstring& path, bool folder, const std::wstring& application,
                       const std::wstring& installed, const std::vector<std::wstring>& written) {
  const DWORD there = GetFileAttributesW((installed + path).c_str());
  if (there == INVALID_FILE_ATTRIBUTES) return "is missing";
  if (((there & FILE_ATTRIBUTE_DIRECTORY) != 0) != folder) {
    return folder ? "is no folder" : "is a folder";
  }
  const bool own = std::any_of(written.begin(), written.end(), [&](const std::wstring& name) {
    return CompareStringW(LOCALE_INVARIANT, NORM_IGNORECASE, name.c_str(), -1, path.c_str(), -1) ==
           CSTR_EQUAL;
  });
  return folder || own ? "" : FileDifference(application + path, installed + path);
}

}  // namespace

std::string TreeDifference(const std::string& application, const std::string& installed) {
  const std::wstring from = Root(application);
  const std::wstring to = Root(installed);
  Entries entries;
  List(from, L"", entries);
  const auto written = Written(from.substr(0, from.find_last_of(L'\\')));
  std::string told;
  std::size_t wrong = 0;
  std::size_t all = 0;
  for (const auto& [path, folder] : entries) {
    if (!folder && IsDatabaseFile(path)) continue;
    ++all;
    const std::string difference = Difference(path, folder, from, to, written);
    if (difference.empty()) continue;
    if (++wrong > kTold) continue;
    told += (wrong == 1 ? "" : ", ") + Quoted(Utf8(path.substr(1))) + " " + difference;
  }
  if (wrong == 0) return {};
  if (wrong > kTold) told += ", and " + std::to_string(wrong - kTold) + " more";
  return std::to_string(wrong) + " of " + std::to_string(all) +
         " files and folders are not as in the pack: " + told;
}

}  // namespace talu::drive
