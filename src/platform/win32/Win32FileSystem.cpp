#include "platform/win32/Win32FileSystem.h"

#include <utility>

#include "platform/win32/Text.h"
#include "platform/win32/WhileLocked.h"
#include "platform/win32/Win32TextFile.h"
#include "platform/win32/Windows.h"
#include "runtime/RuntimeError.h"

namespace talu {
namespace {

/// A new folder must have room for a file name of eight and three characters.
constexpr std::uint32_t kFolderLimit = MAX_PATH - 12;

bool IsFolder(DWORD attributes) {
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

std::string FullPath(const std::string& path) {
  wchar_t buffer[MAX_PATH];
  const DWORD length = GetFullPathNameW(Wide(path).c_str(), MAX_PATH, buffer, nullptr);
  if (length == 0 || length >= MAX_PATH) throw RuntimeError(error::kPathNotFound);
  std::string full = Narrow({buffer, length});
  // Only a root ("C:\") keeps its backslash.
  if (full.size() > 3 && full.back() == '\\') full.pop_back();
  return full;
}

class Win32Folder : public Folder {
 public:
  explicit Win32Folder(std::string path) : path_(std::move(path)) {}

  std::string Path() const override { return path_; }
  std::string Name() const override { return path_.substr(path_.rfind('\\') + 1); }
  std::vector<FolderItem> Files() const override { return Items(false); }
  std::vector<FolderItem> SubFolders() const override { return Items(true); }

 private:
  std::vector<FolderItem> Items(bool folders) const {
    const std::string prefix = path_.back() == '\\' ? path_ : path_ + "\\";
    WIN32_FIND_DATAW found;
    const HANDLE search = FindFirstFileW(Wide(prefix + "*").c_str(), &found);
    if (search == INVALID_HANDLE_VALUE) return NoItems(GetLastError());

    std::vector<FolderItem> items;
    do {
      const std::string name = Narrow(found.cFileName);
      if (name == "." || name == ".." || IsFolder(found.dwFileAttributes) != folders) continue;
      items.push_back({name, prefix + name});
    } while (FindNextFileW(search, &found));
    const DWORD end = GetLastError();
    FindClose(search);
    if (end != ERROR_NO_MORE_FILES) throw RuntimeError(error::kPermissionDenied);
    return items;
  }

  /// An empty root has no entries at all; anything else is a folder that cannot be listed.
  static std::vector<FolderItem> NoItems(DWORD reason) {
    if (reason == ERROR_FILE_NOT_FOUND || reason == ERROR_NO_MORE_FILES) return {};
    throw RuntimeError(reason == ERROR_PATH_NOT_FOUND ? error::kPathNotFound
                                                      : error::kPermissionDenied);
  }

  std::string path_;
};

}  // namespace

bool Win32FileSystem::FileExists(const std::string& path) {
  const DWORD attributes = GetFileAttributesW(Wide(path).c_str());
  return attributes != INVALID_FILE_ATTRIBUTES && !IsFolder(attributes);
}

bool Win32FileSystem::FolderExists(const std::string& path) {
  return IsFolder(GetFileAttributesW(Wide(path).c_str()));
}

void Win32FileSystem::CreateFolder(const std::string& path) {
  if (path.empty()) throw RuntimeError(error::kInvalidProcedureCall);
  if (!IsShorterThan(path, kFolderLimit)) throw RuntimeError(error::kPathNotFound);
  const bool made = TryWhileLocked([&] {
    if (CreateDirectoryW(Wide(path).c_str(), nullptr)) return true;
    // A root that is there answers "access denied".
    const DWORD reason = GetLastError();
    SetLastError(FolderExists(path) ? ERROR_ALREADY_EXISTS : reason);
    return false;
  });
  if (made) return;
  switch (GetLastError()) {
    case ERROR_ALREADY_EXISTS:
    case ERROR_FILE_EXISTS:
      throw RuntimeError(error::kFileAlreadyExists);
    case ERROR_PATH_NOT_FOUND:
    case ERROR_FILE_NOT_FOUND:
    case ERROR_BAD_PATHNAME:
    case ERROR_BAD_NETPATH:
    case ERROR_BAD_NET_NAME:
    case ERROR_FILENAME_EXCED_RANGE:
    case ERROR_NOT_READY:
      throw RuntimeError(error::kPathNotFound);
    case ERROR_INVALID_NAME:
      throw RuntimeError(error::kBadFileNumber);
    case ERROR_DISK_FULL:
      throw RuntimeError(error::kDiskFull);
    default:
      throw RuntimeError(error::kPermissionDenied);
  }
}

void Win32FileSystem::DeleteFile(const std::string& path, bool force) {
  const DWORD attributes = GetFileAttributesW(Wide(path).c_str());
  if (attributes == INVALID_FILE_ATTRIBUTES || IsFolder(attributes)) {
    throw RuntimeError(error::kFileNotFound);
  }
  const bool unlock = force && (attributes & FILE_ATTRIBUTE_READONLY) != 0;
  if (unlock) SetFileAttributesW(Wide(path).c_str(), attributes & ~DWORD{FILE_ATTRIBUTE_READONLY});
  if (TryWhileLocked([&] { return DeleteFileW(Wide(path).c_str()) != FALSE; })) return;
  const DWORD reason = GetLastError();
  if (unlock) SetFileAttributesW(Wide(path).c_str(), attributes);
  throw RuntimeError(reason == ERROR_FILE_NOT_FOUND ? error::kFileNotFound
                                                    : error::kPermissionDenied);
}

std::unique_ptr<Folder> Win32FileSystem::GetFolder(const std::string& path) {
  if (path.empty() || !FolderExists(path)) throw RuntimeError(error::kPathNotFound);
  return std::make_unique<Win32Folder>(FullPath(path));
}

std::string Win32FileSystem::GetSpecialFolder(int number) {
  wchar_t buffer[MAX_PATH + 1];
  UINT length = 0;
  switch (number) {
    case 0:
      length = GetWindowsDirectoryW(buffer, MAX_PATH + 1);
      break;
    case 1:
      length = GetSystemDirectoryW(buffer, MAX_PATH + 1);
      break;
    case 2:
      length = static_cast<UINT>(GetTempPathW(MAX_PATH + 1, buffer));
      break;
    default:
      throw RuntimeError(error::kInvalidProcedureCall);
  }
  if (length == 0 || length > MAX_PATH) throw RuntimeError(error::kPathNotFound);
  return FullPath(Narrow({buffer, length}));
}

std::unique_ptr<TextFile> Win32FileSystem::OpenTextFile(const std::string& path, OpenMode mode) {
  if (!IsShorterThan(path, MAX_PATH)) throw RuntimeError(error::kPathNotFound);
  return std::make_unique<Win32TextFile>(path, mode);
}

void Win32FileSystem::ReopenTextFile(const std::string& path, std::unique_ptr<TextFile>& file) {
  // Only this machine's own files are passed back to it.
  if (static_cast<Win32TextFile&>(*file).GoToEnd()) return;
  FileSystemObject::ReopenTextFile(path, file);
}

}  // namespace talu
