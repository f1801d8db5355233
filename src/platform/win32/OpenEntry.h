#pragma once

#include <string>

#include "platform/Removal.h"
#include "platform/win32/Windows.h"

namespace talu {

/// One file or folder by a handle, so that what was looked at is what is removed. It is the entry
/// itself, never what a link leads to.
class OpenEntry {
 public:
  /// Opens what is there under `path`, with DELETE access where it is `forRemoval`. What is locked
  /// is tried again for half a second. Raises 53 when there is nothing (76 when its folder is
  /// missing too), 70 when it is in use or protected.
  OpenEntry(const std::string& path, bool forRemoval);
  ~OpenEntry();
  OpenEntry(const OpenEntry&) = delete;
  OpenEntry& operator=(const OpenEntry&) = delete;

  /// A junction, a symbolic link and whatever else leads elsewhere is a link; so is what lies
  /// behind one, somewhere on the way from the root of its drive.
  EntryKind Kind() const { return kind_; }
  /// When it was last written to, in units of 100 ns.
  std::uint64_t Written() const;
  /// Removes the file or the empty folder, a read-only one too. The file of the program that runs
  /// leaves its folder at once and is removed when Windows starts the next time. Raises 70 when it
  /// may not be removed or is in use, 75 for a link and for a folder that is not empty.
  void Remove();

 private:
  bool IsBehindLink() const;
  bool Dispose();
  void SetAttributes(DWORD attributes);

  std::wstring path_;
  HANDLE handle_ = INVALID_HANDLE_VALUE;
  BY_HANDLE_FILE_INFORMATION info_ = {};
  EntryKind kind_ = EntryKind::File;
};

}  // namespace talu
