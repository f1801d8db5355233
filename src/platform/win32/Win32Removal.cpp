#include "platform/win32/Win32Removal.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <utility>

#include "platform/win32/OpenEntry.h"
#include "platform/win32/StartProgram.h"
#include "platform/win32/Text.h"
#include "platform/win32/WhileLocked.h"
#include "platform/win32/Win32TextFile.h"
#include "runtime/RuntimeError.h"

namespace talu {
namespace {

EntryKind KindOf(DWORD attributes) {
  if ((attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0) return EntryKind::Link;
  return (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0 ? EntryKind::Folder : EntryKind::File;
}

std::uint64_t AsNumber(const FILETIME& time) {
  return std::uint64_t{time.dwHighDateTime} << 32 | time.dwLowDateTime;
}

/// The drive's root, or the share.
std::wstring RootOf(const std::wstring& full) {
  if (!full.starts_with(L"\\\\")) return full.substr(0, 3);
  const std::size_t share = full.find(L'\\', full.find(L'\\', 2) + 1);
  return full.substr(0, share);
}

/// Whether there is nothing, by the system's error for the full path. What is on a drive or a
/// server that is not at hand may be there.
bool IsNothing(DWORD reason, const std::wstring& full) {
  switch (reason) {
    case ERROR_FILE_NOT_FOUND:
    case ERROR_INVALID_NAME:
    case ERROR_BAD_PATHNAME:
    case ERROR_FILENAME_EXCED_RANGE:
      return true;
    case ERROR_PATH_NOT_FOUND:
      return GetFileAttributesW(RootOf(full).c_str()) != INVALID_FILE_ATTRIBUTES;
    default:
      return false;
  }
}

/// Whether what was written to the file is on the disk; the thread's last error says why not.
bool Flush(const std::wstring& path) {
  const HANDLE file = CreateFileW(path.c_str(), GENERIC_WRITE,
                                  FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                  OPEN_EXISTING, 0, nullptr);
  if (file == INVALID_HANDLE_VALUE) return false;
  const bool done = FlushFileBuffers(file) != FALSE;
  const DWORD reason = GetLastError();
  CloseHandle(file);
  SetLastError(reason);
  return done;
}

[[noreturn]] void RaiseListError(DWORD reason) {
  throw RuntimeError(reason == ERROR_PATH_NOT_FOUND ? error::kPathNotFound
                                                    : error::kPermissionDenied);
}

/// A file that is only compared. Raises 53, 70.
std::unique_ptr<Win32TextFile> OpenForComparing(const std::string& path) {
  try {
    return std::make_unique<Win32TextFile>(path, OpenMode::Input);
  } catch (const RuntimeError& error) {
    const bool missing = error.Number == error::kFileNotFound ||
                         error.Number == error::kPathNotFound ||
                         error.Number == error::kBadFileNumber;
    throw RuntimeError(missing ? error::kFileNotFound : error::kPermissionDenied);
  }
}

/// As many bytes as there are, up to `size`.
std::size_t ReadFully(TextFile& file, char* buffer, std::size_t size) {
  std::size_t done = 0;
  while (done < size) {
    const std::size_t more = file.Read(buffer + done, size - done);
    if (more == 0) break;
    done += more;
  }
  return done;
}

}  // namespace

Win32Removal::Win32Removal(std::function<void(HANDLE)> wait, OdbcInstaller& odbc,
                           const std::string& appFolder)
    : wait_(std::move(wait)), odbc_(odbc), appFolder_(Wide(appFolder)) {}

DiskEntry Win32Removal::Look(const std::string& path) {
  DiskEntry entry;
  entry.Name = path.substr(path.find_last_of('\\') + 1);
  std::wstring full;
  try {
    full = FullPathOf(path);
  } catch (const RuntimeError&) {
    return entry;
  }
  WIN32_FILE_ATTRIBUTE_DATA data;
  if (GetFileAttributesExW(full.c_str(), GetFileExInfoStandard, &data)) {
    entry.Kind = KindOf(data.dwFileAttributes);
    entry.Written = AsNumber(data.ftLastWriteTime);
  } else if (!IsNothing(GetLastError(), full)) {
    throw RuntimeError(error::kPermissionDenied);
  }
  return entry;
}

std::vector<DiskEntry> Win32Removal::List(const std::string& folder) {
  const std::string pattern = folder + (folder.ends_with('\\') ? "*" : "\\*");
  WIN32_FIND_DATAW found;
  const HANDLE search = FindFirstFileExW(Wide(pattern).c_str(), FindExInfoBasic, &found,
                                         FindExSearchNameMatch, nullptr, 0);
  if (search == INVALID_HANDLE_VALUE) {
    const DWORD reason = GetLastError();
    // An empty root has no entries at all.
    if (reason == ERROR_FILE_NOT_FOUND || reason == ERROR_NO_MORE_FILES) return {};
    RaiseListError(reason);
  }
  std::vector<DiskEntry> entries;
  do {
    if (std::wcscmp(found.cFileName, L".") == 0 || std::wcscmp(found.cFileName, L"..") == 0)
      continue;
    entries.push_back(
        {Narrow(found.cFileName), KindOf(found.dwFileAttributes), AsNumber(found.ftLastWriteTime)});
  } while (FindNextFileW(search, &found));
  const DWORD end = GetLastError();
  FindClose(search);
  if (end != ERROR_NO_MORE_FILES) RaiseListError(end);
  return entries;
}

void Win32Removal::RemoveFile(const std::string& path) {
  try {
    OpenEntry entry(path, appFolder_);
    if (entry.Kind() != EntryKind::File) throw RuntimeError(error::kPathFileAccess);
    entry.Remove();
  } catch (const RuntimeError& error) {
    if (error.Number == error::kPathNotFound) throw RuntimeError(error::kFileNotFound);
    throw;
  }
}

void Win32Removal::RemoveFolder(const std::string& path) {
  try {
    OpenEntry entry(path, appFolder_);
    if (entry.Kind() != EntryKind::Folder) throw RuntimeError(error::kPathFileAccess);
    entry.Remove();
  } catch (const RuntimeError& error) {
    if (error.Number == error::kFileNotFound) throw RuntimeError(error::kPathNotFound);
    throw;
  }
}

void Win32Removal::Replace(const std::string& from, const std::string& to) {
  const std::wstring source = Wide(from);
  const std::wstring target = Wide(to);
  const bool moved = TryWhileLocked([&] {
    // Otherwise the name may be on the disk before the bytes are.
    return Flush(source) &&
           MoveFileExW(source.c_str(), target.c_str(),
                       MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) != FALSE;
  });
  if (moved) return;
  const DWORD reason = GetLastError();
  throw RuntimeError(reason == ERROR_FILE_NOT_FOUND || reason == ERROR_PATH_NOT_FOUND
                         ? error::kFileNotFound
                         : error::kPermissionDenied);
}

bool Win32Removal::SameBytes(const std::string& one, const std::string& other) {
  const auto first = OpenForComparing(one);
  const auto second = OpenForComparing(other);
  if (first->Size() != second->Size()) return false;
  constexpr std::uint64_t kLargest = 1U << 16;
  std::uint64_t left = first->Size();
  auto part = static_cast<std::size_t>(std::min(left, kLargest));
  const auto buffers = std::make_unique_for_overwrite<char[]>(2 * part);
  for (; left > 0; left -= part) {
    part = static_cast<std::size_t>(std::min<std::uint64_t>(left, part));
    char* const secondPart = buffers.get() + part;
    if (ReadFully(*first, buffers.get(), part) != part) return false;
    if (ReadFully(*second, secondPart, part) != part) return false;
    if (std::memcmp(buffers.get(), secondPart, part) != 0) return false;
  }
  return true;
}

std::int32_t Win32Removal::RunSystemProgram(const std::string& name, const std::string& arguments) {
  const std::wstring program = SystemProgram(name);
  if (program.empty()) return -1;
  std::wstring command = L"\"" + program + L"\" " + Wide(arguments);
  STARTUPINFOW startup = {};
  startup.cb = sizeof startup;
  PROCESS_INFORMATION process = {};
  if (StartAsUsual(program.c_str(), command, FALSE, startup, process) != 0) return -1;
  CloseHandle(process.hThread);
  wait_(process.hProcess);
  DWORD code = static_cast<DWORD>(-1);
  GetExitCodeProcess(process.hProcess, &code);
  CloseHandle(process.hProcess);
  return static_cast<std::int32_t>(code);
}

}  // namespace talu
