#include "platform/win32/Win32TextFile.h"

#include <algorithm>

#include "platform/win32/Text.h"
#include "platform/win32/WhileLocked.h"
#include "runtime/RuntimeError.h"

namespace talu {
namespace {

std::int32_t OpenError(DWORD reason) {
  switch (reason) {
    case ERROR_FILE_NOT_FOUND:
      return error::kFileNotFound;
    case ERROR_PATH_NOT_FOUND:
    case ERROR_BAD_PATHNAME:
    case ERROR_BAD_NETPATH:
    case ERROR_BAD_NET_NAME:
    case ERROR_NOT_READY:
    case ERROR_FILENAME_EXCED_RANGE:
      return error::kPathNotFound;
    case ERROR_SHARING_VIOLATION:
    case ERROR_LOCK_VIOLATION:
      return error::kPermissionDenied;
    case ERROR_INVALID_NAME:
    case ERROR_INVALID_PARAMETER:
      return error::kBadFileNumber;
    case ERROR_TOO_MANY_OPEN_FILES:
      return error::kTooManyFiles;
    case ERROR_DISK_FULL:
    case ERROR_HANDLE_DISK_FULL:
      return error::kDiskFull;
    default:
      return error::kPathFileAccess;
  }
}

HANDLE Open(const std::string& path, OpenMode mode) {
  if (mode == OpenMode::Input) {
    return CreateFileW(Wide(path).c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE,
                       nullptr, OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN, nullptr);
  }
  return CreateFileW(Wide(path).c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr,
                     mode == OpenMode::Output ? CREATE_ALWAYS : OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL,
                     nullptr);
}

}  // namespace

Win32TextFile::Win32TextFile(const std::string& path, OpenMode mode) {
  const bool opened = TryWhileLocked([&] {
    file_ = Open(path, mode);
    return file_ != INVALID_HANDLE_VALUE;
  });
  if (!opened) throw RuntimeError(OpenError(GetLastError()));
  LARGE_INTEGER size;
  if (GetFileSizeEx(file_, &size)) size_ = static_cast<std::uint64_t>(size.QuadPart);
  if (mode == OpenMode::Append) SetFilePointerEx(file_, {}, nullptr, FILE_END);
}

Win32TextFile::~Win32TextFile() {
  CloseHandle(file_);
}

bool Win32TextFile::GoToEnd() {
  FILE_STANDARD_INFO info;
  if (!GetFileInformationByHandleEx(file_, FileStandardInfo, &info, sizeof info)) return false;
  if (info.DeletePending || info.NumberOfLinks == 0) return false;
  return SetFilePointerEx(file_, {}, nullptr, FILE_END) != FALSE;
}

std::size_t Win32TextFile::Read(char* buffer, std::size_t size) {
  constexpr std::size_t kLargest = 1U << 30;
  DWORD done = 0;
  if (!ReadFile(file_, buffer, static_cast<DWORD>(std::min(size, kLargest)), &done, nullptr)) {
    throw RuntimeError(error::kDeviceIO);
  }
  return done;
}

void Win32TextFile::Write(std::string_view bytes) {
  DWORD done = 0;
  const BOOL accepted =
      WriteFile(file_, bytes.data(), static_cast<DWORD>(bytes.size()), &done, nullptr);
  if (accepted && done == bytes.size()) return;
  const DWORD reason = accepted ? ERROR_DISK_FULL : GetLastError();
  const bool full = reason == ERROR_DISK_FULL || reason == ERROR_HANDLE_DISK_FULL;
  throw RuntimeError(full ? error::kDiskFull : error::kDeviceIO);
}

}  // namespace talu
