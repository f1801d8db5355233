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
    case ERROR_FILENAME_EXCED_RANGE:
      return error::kPathNotFound;
    default:
      return error::kPermissionDenied;
  }
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

/// Where a folder really is. Most questions are about one.
const std::wstring& FinalPathOfFolder(const std::wstring& folder) {
  static std::wstring last;
  static std::wstring final;
  if (last == folder && !final.empty()) return final;
  last = folder;
  const HANDLE handle = CreateFileW(folder.c_str(), FILE_READ_ATTRIBUTES, kSharingAll, nullptr,
                                    OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
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

std::wstring FullPathOf(const std::string& path) {
  const std::wstring wide = Wide(path);
  if (wide.find(L'\0') != std::wstring::npos || wide.find(L':', 2) != std::wstring::npos)
    throw RuntimeError(error::kPathNotFound);
  std::wstring full(wide.size() + MAX_PATH, L'\0');
  const DWORD length =
      GetFullPathNameW(wide.c_str(), static_cast<DWORD>(full.size()), full.data(), nullptr);
  if (length == 0 || length >= full.size()) throw RuntimeError(error::kPathNotFound);
  full.resize(length);
  if (full.size() > 3 && full.back() == L'\\') full.pop_back();
  return full;
}

OpenEntry::OpenEntry(const std::string& path, const std::wstring& anchor)
    : path_(FullPathOf(path)) {
  LeaveFolder(path_);
  constexpr DWORD kAccess = DELETE | FILE_READ_ATTRIBUTES | FILE_WRITE_ATTRIBUTES | SYNCHRONIZE;
  const bool opened = TryWhileLocked([&] {
    handle_ =
        CreateFileW(path_.c_str(), kAccess, kSharingAll, nullptr, OPEN_EXISTING, kItself, nullptr);
    return handle_ != INVALID_HANDLE_VALUE;
  });
  if (!opened) throw RuntimeError(OpenError(GetLastError()));
  if (!GetFileInformationByHandleEx(handle_, FileBasicInfo, &info_, sizeof info_)) {
    CloseHandle(handle_);
    throw RuntimeError(error::kPermissionDenied);
  }
  if ((info_.FileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0 || IsBehindLink(anchor)) {
    kind_ = EntryKind::Link;
  } else if ((info_.FileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0) {
    kind_ = EntryKind::Folder;
  }
}

OpenEntry::~OpenEntry() {
  CloseHandle(handle_);
}

// The system says where a handle really leads: in the anchor it is the path that was given, unless
// a link is on the way.
bool OpenEntry::IsBehindLink(const std::wstring& anchor) const {
  const std::size_t root = anchor.size();
  if (path_.size() <= root || path_[root] != L'\\' || !IsSame(path_.substr(0, root), anchor))
    return false;
  const std::wstring& base = FinalPathOfFolder(anchor);
  const std::wstring found = FinalPath(handle_);
  if (base.empty() || found.empty()) return true;
  if (IsSame(found, base + path_.substr(root))) return false;
  // The path may have short names in it.
  const std::wstring whole = Text([this](wchar_t* buffer, DWORD size) {
    return GetLongPathNameW(path_.c_str(), buffer, size);
  });
  return whole.size() < root || !IsSame(found, base + whole.substr(root));
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

  const bool isProtected = (info_.FileAttributes & FILE_ATTRIBUTE_READONLY) != 0;
  if (isProtected) SetAttributes(info_.FileAttributes & ~DWORD{FILE_ATTRIBUTE_READONLY});
  FILE_DISPOSITION_INFO removed = {TRUE};
  if (SetFileInformationByHandle(handle_, FileDispositionInfo, &removed, sizeof removed))
    return true;
  reason = GetLastError();
  if (isProtected) SetAttributes(info_.FileAttributes);
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
  if (IsOwnProgram(handle_, info_)) {
    SetAttributes(info_.FileAttributes & ~DWORD{FILE_ATTRIBUTE_READONLY});
    return TakeAwayOwnProgram(handle_, path_);
  }
  if (TryWhileLocked([this] { return Dispose(); })) return;
  throw RuntimeError(GetLastError() == ERROR_DIR_NOT_EMPTY ? error::kPathFileAccess
                                                           : error::kPermissionDenied);
}

}  // namespace talu
