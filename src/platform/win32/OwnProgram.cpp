#include "platform/win32/OwnProgram.h"

#include <cstring>
#include <vector>

#include "platform/win32/Text.h"
#include "runtime/RuntimeError.h"

namespace talu {
namespace {

struct FileIdentity {
  FILE_BASIC_INFO Times = {};
  BY_HANDLE_FILE_INFORMATION Number = {};
};

FileIdentity FindOwnProgram() {
  FileIdentity own;
  const std::wstring path = Wide(OwnProgramPath());
  const HANDLE handle = CreateFileW(path.c_str(), FILE_READ_ATTRIBUTES,
                                    FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                    OPEN_EXISTING, 0, nullptr);
  if (handle == INVALID_HANDLE_VALUE) return own;
  GetFileInformationByHandleEx(handle, FileBasicInfo, &own.Times, sizeof own.Times);
  GetFileInformationByHandle(handle, &own.Number);
  CloseHandle(handle);
  return own;
}

/// "\TALU-{...}.tmp".
std::wstring NameOfItsOwn() {
  GUID id = {};
  wchar_t text[40] = L"";
  if (FAILED(CoCreateGuid(&id)) || StringFromGUID2(id, text, 40) == 0)
    throw RuntimeError(error::kPermissionDenied);
  return L"\\TALU-" + std::wstring(text) + L".tmp";
}

bool Rename(HANDLE handle, const std::wstring& to) {
  const std::size_t bytes = to.size() * sizeof(wchar_t);
  std::vector<char> buffer(sizeof(FILE_RENAME_INFO) + bytes);
  FILE_RENAME_INFO info = {};
  info.FileNameLength = static_cast<DWORD>(bytes);
  std::memcpy(buffer.data(), &info, sizeof info);
  std::memcpy(buffer.data() + offsetof(FILE_RENAME_INFO, FileName), to.data(), bytes);
  return SetFileInformationByHandle(handle, FileRenameInfo, buffer.data(),
                                    static_cast<DWORD>(buffer.size())) != FALSE;
}

}  // namespace

std::string OwnProgramPath() {
  wchar_t path[MAX_PATH] = L"";
  GetModuleFileNameW(nullptr, path, MAX_PATH);
  wchar_t whole[MAX_PATH] = L"";
  const DWORD length = GetLongPathNameW(path, whole, MAX_PATH);
  return Narrow(length > 0 && length < MAX_PATH ? whole : path);
}

bool IsOwnProgram(HANDLE handle, const FILE_BASIC_INFO& info) {
  static const FileIdentity kOwn = FindOwnProgram();
  // A file's number costs a request to the driver of its volume, far more than removing the file.
  if (info.LastWriteTime.QuadPart != kOwn.Times.LastWriteTime.QuadPart) return false;
  BY_HANDLE_FILE_INFORMATION file;
  return (kOwn.Number.nFileIndexHigh != 0 || kOwn.Number.nFileIndexLow != 0) &&
         GetFileInformationByHandle(handle, &file) &&
         file.dwVolumeSerialNumber == kOwn.Number.dwVolumeSerialNumber &&
         file.nFileIndexHigh == kOwn.Number.nFileIndexHigh &&
         file.nFileIndexLow == kOwn.Number.nFileIndexLow;
}

void TakeAwayOwnProgram(HANDLE handle, const std::wstring& path) {
  wchar_t windows[MAX_PATH] = L"";
  GetWindowsDirectoryW(windows, MAX_PATH);
  const std::wstring name = NameOfItsOwn();
  for (const std::wstring& place : {windows + std::wstring(L"\\Temp"), path.substr(0, 2)}) {
    const std::wstring target = place + name;
    if (!Rename(handle, target)) continue;
    if (MoveFileExW(target.c_str(), nullptr, MOVEFILE_DELAY_UNTIL_REBOOT)) return;
    Rename(handle, path);
  }
  throw RuntimeError(error::kPermissionDenied);
}

}  // namespace talu
