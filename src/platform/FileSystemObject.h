#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace talu {

/// One file or sub-folder of a folder listing.
struct FolderItem {
  std::string Name;
  /// Full path.
  std::string Path;
};

/// An existing folder, from `GetFolder`. The lists are read again at each call, in the file
/// system's order; both raise 76 when the folder no longer exists and 70 when it may not be read.
class Folder {
 public:
  virtual ~Folder() = default;
  virtual std::string Path() const = 0;
  virtual std::string Name() const = 0;
  virtual std::vector<FolderItem> Files() const = 0;
  virtual std::vector<FolderItem> SubFolders() const = 0;
};

enum class OpenMode { Input, Output, Append };

/// An open file of bytes; closed when it is destroyed.
class TextFile {
 public:
  virtual ~TextFile() = default;
  /// Size in bytes when the file was opened.
  virtual std::uint64_t Size() const = 0;
  /// Reads up to `size` bytes; returns how many, 0 at the end. Raises 57.
  virtual std::size_t Read(char* buffer, std::size_t size) = 0;
  /// Writes all bytes at the end of the file; they are on disk when the call returns. Raises 61
  /// when the disk is full, 57 for any other failure.
  virtual void Write(std::string_view bytes) = 0;
};

/// The platform's file-system object, with its own error numbers, and the bytes of text files.
class FileSystemObject {
 public:
  virtual ~FileSystemObject() = default;

  virtual bool FileExists(const std::string& path) = 0;
  virtual bool FolderExists(const std::string& path) = 0;
  /// Creates one level. Raises 5 for an empty path, 58 when it already exists, 76 when the parent
  /// does not, 70 when it may not be written.
  virtual void CreateFolder(const std::string& path) = 0;
  /// Deletes one file. `force` deletes read-only files too. Raises 53 when it does not exist, 70
  /// when it is in use or protected.
  virtual void DeleteFile(const std::string& path, bool force) = 0;
  /// Raises 76 when there is no such folder.
  virtual std::unique_ptr<Folder> GetFolder(const std::string& path) = 0;
  /// 0 is the Windows folder, 1 the system folder, 2 the folder for temporary files. Raises 5 for
  /// any other number.
  virtual std::string GetSpecialFolder(int number) = 0;

  /// Opens a file: for input it must exist; output empties it; output and append create it when
  /// missing. Raises 53 when it is missing, 76 when its folder is, 70 when it is locked, 75 when
  /// access is denied, 52 for a bad name.
  virtual std::unique_ptr<TextFile> OpenTextFile(const std::string& path, OpenMode mode) = 0;
  /// Closes `file`, which is open for append under `path`, and opens it for append again. Raises
  /// as `OpenTextFile` does; `file` is then a null pointer.
  virtual void ReopenTextFile(const std::string& path, std::unique_ptr<TextFile>& file) {
    file.reset();
    file = OpenTextFile(path, OpenMode::Append);
  }
};

}  // namespace talu
