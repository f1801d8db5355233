#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace talu::standin {

/// Where a Windows path leads to on this machine.
struct FoundPath {
  std::filesystem::path File;
  /// Whether the file's folder exists.
  bool FolderExists = false;
  /// Whether the file itself exists.
  bool Exists = false;
  /// Whether it may be made or written.
  bool IsProtected = false;
  /// Why it cannot exist, as Windows words it: "3(The system cannot find the path specified.)".
  /// Empty when the folder exists.
  std::string SystemError;
};

/// Drive letters mapped to folders of this machine.
class Drives {
 public:
  /// Adds "C=DIR". Raises std::invalid_argument, with the reason, when it is malformed or the
  /// folder does not exist.
  void Add(std::string_view mapping);

  /// No file can be made in the folder or below ("C:\\Program Files"). Raises
  /// std::invalid_argument when it is no path with a drive letter.
  void Protect(const std::string& windowsFolder);

  /// Follows a path with a drive letter ("C:\Data\Sales.mdf"), as Windows does: case is ignored,
  /// blanks and dots at the end of a part are dropped, ".." stops at the root.
  FoundPath Find(std::string_view windowsPath) const;
  /// The other way round; a file on no drive is given as it is.
  std::string WindowsPath(const std::filesystem::path& file) const;

 private:
  std::map<char, std::filesystem::path> folders_;
  std::vector<std::vector<std::string>> protected_;
};

}  // namespace talu::standin
