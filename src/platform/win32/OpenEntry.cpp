#include "platform/win32/OpenEntry.h"

#include <algorithm>

#include "platform/win32/OwnProgram.h"
#include "platform/win32/SystemLibrary.h"
#include "platform/win32/Text.h"
#include "platform/win32/WhileLocked.h"
#include "runtime/RuntimeError.h"

namespace talu {
namespace {

constexpr DWORD kSharingAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
constexpr DWORD kItself = FILE_FLAG_BACKUP_SEMANTICS | FILE_FLAG_OPEN_REPARSE_POINT;

// Windows 10 has these; older headers of the compiler do not.
constexpr auto kDispositionEx = static_cast<FILE_INFO_BY_HANDLE_CLASS>(21);
constexpr DWORD kDelete = 1;
constexpr DWORD kPosixSemantics = 2;
constexpr DWORD kIgnoreReadOnly = 16;

std::int32_t OpenError(DWORD reason) {
  switch (reason) {
    case ERROR_FILE_NOT_FOUND:
      return error::kFileNotFound;
    case ERROR_PATH_NOT_FOUND:
    case ERROR_INVALID_NAME:
    case ERROR_BAD_PATHNAME:
    case ERROR_BAD_NETPATH:
    case ERROR_BAD_NET_NAME:
    case ERROR_NOT_READY:
    case ERROR_INVALID_DRIVE:
    case ERROR_FILENAME_EXCED_RANGE:
      return error::kPathNotFound;
    default:
      return error::kPermissionDenied;
  }
}

/// Raises 76 for what is no path of a file or folder: a stream of one, a text with a NUL in it.
std::wstring FullPath(const std::string& path) {
  const std::wstring wide = Wide(path);
  if (wide.find(L'\0') != std::wstring::npos || wide.find(L':', 2) != std::wstring::npos)
    throw RuntimeError(error::kPathNotFound);
  std::wstring full(wide.size() + MAX_PATH, L'\0');
  const DWORD length =
      GetFullPathNameW(wide.c_str(), static_cast<DWORD>(full.size()), full.data(), nullptr);
  if (length == 0 || length >= full.size()) throw RuntimeError(error::kPathNotFound);
  full.resize(length);
  // Only a root ("C:\") keeps its backslash.
  if (full.size() > 3 && full.back() == L'\\') full.pop_back();
  return full;
}

/// What a function writes that is given a buffer and returns the length; empty when it fails.
template <class Function>
std::wstring Text(Function&& function) {
  std::wstring text(2 * MAX_PATH, L'\0');
  const DWORD length = function(text.data(), static_cast<DWORD>(text.size()));
  text.resize(length < text.size() ? length : 0);
  while (!text.empty() && text.back() == L'\\') text.pop_back();
  return text;
}

std::wstring FinalPath(HANDLE handle) {
  return Text([handle](wchar_t* buffer, DWORD size) {
    return GetFinalPathNameByHandleW(handle, buffer, size, FILE_NAME_NORMALIZED);
  });
}

/// The length of "C:" or "\\server\share" at the beginning of a full path.
std::size_t RootLength(const std::wstring& path) {
  if (path.compare(0, 2, L"\\\\") != 0) return 2;
  const std::size_t share = path.find(L'\\', 2);
  return std::min(path.size(), share == std::wstring::npos ? share : path.find(L'\\', share + 1));
}

/// The final path of a drive, of which most questions are about one.
const std::wstring& FinalRoot(const std::wstring& root) {
  static std::wstring last;
  static std::wstring final;
  if (last == root && !final.empty()) return final;
  last = root;
  const HANDLE handle = CreateFileW((root + L"\\").c_str(), FILE_READ_ATTRIBUTES, kSharingAll,
                                    nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
  final = handle == INVALID_HANDLE_VALUE ? std::wstring() : FinalPath(handle);
  if (handle != INVALID_HANDLE_VALUE) CloseHandle(handle);
  return final;
}

bool IsSame(const std::wstring& a, const std::wstring& b) {
  return CompareStringOrdinal(a.data(), static_cast<int>(a.size()), b.data(),
                              static_cast<int>(b.size()), TRUE) == CSTR_EQUAL;
}

/// A folder that some process works in cannot be removed, and this one may have been started there.
void LeaveFolder(const std::wstring& folder) {
  const std::wstring here =
      Text([](wchar_t* buffer, DWORD size) { return GetCurrentDirectoryW(size, buffer); });
  const bool inside = here.size() >= folder.size() && IsSame(here.substr(0, folder.size()), folder);
  if (inside) SetCurrentDirectoryW(SystemFolder().c_str());
}

}  // namespace

OpenEntry::OpenEntry(const std::string& path, bool forRemoval) : path_(FullPath(path)) {
  if (forRemoval) LeaveFolder(path_);
  const DWORD access =
      FILE_READ_ATTRIBUTES | (forRemoval ? DELETE | FILE_WRITE_ATTRIBUTES | SYNCHRONIZE : 0);
  const bool opened = TryWhileLocked([&] {
    handle_ =
        CreateFileW(path_.c_str(), access, kSharingAll, nullptr, OPEN_EXISTING, kItself, nullptr);
    return handle_ != INVALID_HANDLE_VALUE;
  });
  if (!opened) throw RuntimeError(OpenError(GetLastError()));
  const DWORD byName = GetFileAttributesW(path_.c_str());  // Wine tells of a link only so
  if (!GetFileInformationByHandle(handle_, &info_)) {
    CloseHandle(handle_);
    throw RuntimeError(error::kPermissionDenied);
  }
  const DWORD attributes =
      info_.dwFileAttributes | (byName != INVALID_FILE_ATTRIBUTES ? byName : 0);
  if ((attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0 || IsBehindLink()) {
    kind_ = EntryKind::Link;
  } else if ((attributes & FILE_ATTRIBUTE_DIRECTORY) != 0) {
    kind_ = EntryKind::Folder;
  }
}

OpenEntry::~OpenEntry() {
  CloseHandle(handle_);
}

std::uint64_t OpenEntry::Written() const {
  return std::uint64_t{info_.ftLastWriteTime.dwHighDateTime} << 32 |
         info_.ftLastWriteTime.dwLowDateTime;
}

// The system says where a handle really leads. Without links that is the path that was given, from
// the root of its drive on, which may itself be a folder or a share elsewhere.
bool OpenEntry::IsBehindLink() const {
  const std::size_t root = RootLength(path_);
  const std::wstring& finalRoot = FinalRoot(path_.substr(0, root));
  const std::wstring found = FinalPath(handle_);
  if (finalRoot.empty() || found.empty()) return true;
  const auto expected = [&](std::wstring path) {
    while (!path.empty() && path.back() == L'\\') path.pop_back();
    return finalRoot + path.substr(root);
  };
  if (IsSame(found, expected(path_))) return false;
  // The path may have short names in it.
  const std::wstring whole = Text([this](wchar_t* buffer, DWORD size) {
    return GetLongPathNameW(path_.c_str(), buffer, size);
  });
  return whole.size() < root || !IsSame(found, expected(whole));
}

bool OpenEntry::Dispose() {
  // A name is free again at once by these rules of Windows 10, also while a virus scanner has the
  // file open; its folder could not be removed otherwise.
  static bool known = true;
  DWORD rules = kDelete | kPosixSemantics | kIgnoreReadOnly;
  if (known && SetFileInformationByHandle(handle_, kDispositionEx, &rules, sizeof rules))
    return true;
  DWORD reason = GetLastError();
  if (reason == ERROR_INVALID_PARAMETER || reason == ERROR_CALL_NOT_IMPLEMENTED) known = false;

  const bool isProtected = (info_.dwFileAttributes & FILE_ATTRIBUTE_READONLY) != 0;
  if (isProtected) SetAttributes(info_.dwFileAttributes & ~DWORD{FILE_ATTRIBUTE_READONLY});
  FILE_DISPOSITION_INFO removed = {TRUE};
  if (SetFileInformationByHandle(handle_, FileDispositionInfo, &removed, sizeof removed))
    return true;
  reason = GetLastError();
  if (isProtected) SetAttributes(info_.dwFileAttributes);
  SetLastError(reason);
  return false;
}

void OpenEntry::SetAttributes(DWORD attributes) {
  FILE_BASIC_INFO basic = {};  // times of 0 stay as they are
  basic.FileAttributes = attributes != 0 ? attributes : FILE_ATTRIBUTE_NORMAL;
  SetFileInformationByHandle(handle_, FileBasicInfo, &basic, sizeof basic);
}

void OpenEntry::Remove() {
  if (kind_ == EntryKind::Link) throw RuntimeError(error::kPathFileAccess);
  if (IsOwnProgram(info_)) {
    SetAttributes(info_.dwFileAttributes & ~DWORD{FILE_ATTRIBUTE_READONLY});
    return TakeAwayOwnProgram(handle_, path_);
  }
  if (TryWhileLocked([this] { return Dispose(); })) return;
  throw RuntimeError(GetLastError() == ERROR_DIR_NOT_EMPTY ? error::kPathFileAccess
                                                           : error::kPermissionDenied);
}

}  // namespace talu
