#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <string_view>

namespace talu::standin {

/// Where a Windows path leads on this machine.
struct FoundPath {
  std::filesystem::path File;
  /// The folder of the file is there.
  bool FolderExists = false;
  /// The file itself is there.
  bool Exists = false;
  /// Why it cannot be, as Windows puts it: "3(The system cannot find the path specified.)". Empty
  /// when the folder exists.
  std::string SystemError;
};

/// Drive letters laid over folders of this machine.
class Drives {
 public:
  /// Adds "C=DIR". Raises std::invalid_argument, with the reason, when it is malformed or the
  /// folder does not exist.
  void Add(std::string_view mapping);

  /// Follows a path with a drive letter ("C:\Data\Sales.mdf"), as Windows does: the case of letters
  /// does not count, blanks and dots at the end of a part are dropped, ".." stops at the root.
  FoundPath Find(std::string_view windowsPath) const;

 private:
  std::map<char, std::filesystem::path> folders_;
};

}  // namespace talu::standin
