#include "platform/win32/Win32ShellOperations.h"

#include "platform/win32/Text.h"
#include "platform/win32/WhileLocked.h"
#include "platform/win32/Windows.h"

namespace talu {
namespace {

bool IsAbsolute(const std::string& path) {
  return path.size() > 3 && (path.compare(1, 2, ":\\") == 0 || path.compare(0, 2, "\\\\") == 0);
}

/// Whether `path` means exactly one name, both to the shell and to kernel32.
bool IsPlainName(const std::string& path) {
  return IsAbsolute(path) && path.find_first_of("*?/") == std::string::npos &&
         path.find('\0') == std::string::npos && IsShorterThan(path, MAX_PATH) &&
         path.back() != '\\' && path.back() != '.' && path.back() != ' ';
}

/// A read-only file counts as none: on a disc every file is read-only, and what the shell copies
/// from there is not.
bool IsPlainFile(const std::string& path) {
  const DWORD attributes = GetFileAttributesW(Wide(path).c_str());
  constexpr DWORD kSpecial =
      FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_REPARSE_POINT | FILE_ATTRIBUTE_READONLY;
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & kSpecial) == 0;
}

/// Copies to a name that is free or a plain file's. Anything else is the shell's: a folder, into
/// which it copies under the file's own name, and a protected file, whose protection it takes off.
bool CopyToPlainTarget(const std::wstring& from, const std::wstring& to) {
  // Most targets are not there yet, which the copy itself finds out.
  if (CopyFileW(from.c_str(), to.c_str(), TRUE)) return true;
  const DWORD reason = GetLastError();
  const DWORD attributes = GetFileAttributesW(to.c_str());
  constexpr DWORD kSpecial = FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_REPARSE_POINT |
                             FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN |
                             FILE_ATTRIBUTE_SYSTEM;
  const bool isThere = attributes != INVALID_FILE_ATTRIBUTES;
  if (isThere && (attributes & kSpecial) == 0) return CopyFileW(from.c_str(), to.c_str(), FALSE);
  SetLastError(isThere ? ERROR_FILE_EXISTS : reason);
  return false;
}

bool CopyOneFile(const std::string& from, const std::string& to, int flags) {
  constexpr int kUnlike = FOF_MULTIDESTFILES | FOF_RENAMEONCOLLISION | FOF_ALLOWUNDO;
  if ((flags & FOF_NOCONFIRMATION) == 0 || (flags & kUnlike) != 0) return false;
  if (!IsPlainName(from) || !IsPlainName(to) || !IsPlainFile(from)) return false;
  const std::wstring source = Wide(from);
  const std::wstring target = Wide(to);
  return TryWhileLocked([&] { return CopyToPlainTarget(source, target); });
}

}  // namespace

int Win32ShellOperations::FileOperation(int operation, const std::string& from,
                                        const std::string& to, int flags) {
  if (operation == FO_COPY && CopyOneFile(from, to, flags)) return 0;

  // c_str() gives one NUL, the list needs two.
  const std::wstring fromList = Wide(from + '\0');
  const std::wstring toList = Wide(to + '\0');
  SHFILEOPSTRUCTW request = {};
  request.wFunc = static_cast<UINT>(operation);
  request.pFrom = fromList.c_str();
  request.pTo = toList.c_str();
  request.fFlags = static_cast<FILEOP_FLAGS>(flags);
  return SHFileOperationW(&request);
}

}  // namespace talu
