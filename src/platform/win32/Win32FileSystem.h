#pragma once

#include "platform/FileSystemObject.h"

namespace talu {

/// The file-system object over kernel32. Paths may be as long as Windows' own limit (260
/// characters, 248 for a folder); a longer one raises 76. What is locked is tried again for half a
/// second before it fails.
class Win32FileSystem : public FileSystemObject {
 public:
  bool FileExists(const std::string& path) override;
  bool FolderExists(const std::string& path) override;
  void CreateFolder(const std::string& path) override;
  void DeleteFile(const std::string& path, bool force) override;
  std::unique_ptr<Folder> GetFolder(const std::string& path) override;
  std::string GetSpecialFolder(int number) override;
  std::unique_ptr<TextFile> OpenTextFile(const std::string& path, OpenMode mode) override;
  /// Leaves the file open when nobody can notice: a log is reopened for every entry, which would
  /// cost more than the entry.
  void ReopenTextFile(const std::string& path, std::unique_ptr<TextFile>& file) override;
};

}  // namespace talu
