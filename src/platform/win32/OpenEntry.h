#pragma once

#include <string>

#include "platform/Removal.h"
#include "platform/win32/Windows.h"

namespace talu {

/// One file or folder by a handle that may remove it, so that what was looked at is what is
/// removed. It is the entry itself, never what a link leads to.
class OpenEntry {
 public:
  /// Opens what is there under `path`. On the way from the folder `anchor` to an entry in it,
  /// however deep, nothing may be a link either; how `anchor` itself is reached does not matter.
  /// What is locked is tried again for half a second. Raises 53 when there is nothing (76 when its
  /// folder is missing too), 70 when it is in use or protected.
  OpenEntry(const std::string& path, const std::wstring& anchor);
  ~OpenEntry();
  OpenEntry(const OpenEntry&) = delete;
  OpenEntry& operator=(const OpenEntry&) = delete;

  EntryKind Kind() const { return kind_; }
  /// Removes the file or the empty folder, a read-only one too. The file of the program that runs
  /// leaves its folder at once and is removed when Windows starts the next time. Raises 70 when it
  /// may not be removed or is in use, 75 for a link and for a folder that is not empty.
  void Remove();

 private:
  bool IsBehindLink(const std::wstring& anchor) const;
  bool Dispose();
  void SetAttributes(DWORD attributes);

  std::wstring path_;
  HANDLE handle_ = INVALID_HANDLE_VALUE;
  FILE_BASIC_INFO info_ = {};
  EntryKind kind_ = EntryKind::File;
};

/// The full path of a file or folder, without a backslash at its end but for a root's. Raises 76
/// for what is no path of one: a stream, a text with a NUL in it.
std::wstring FullPathOf(const std::string& path);

}  // namespace talu
