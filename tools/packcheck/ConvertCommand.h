#pragma once

#include <filesystem>
#include <iosfwd>
#include <vector>

#include "ConvertFile.h"

namespace talu::packcheck {

/// Where converted files go. Neither a folder nor `InPlace`: nowhere, they are only shown.
struct ConvertTarget {
  /// Nothing in it is overwritten.
  std::filesystem::path Folder = {};
  /// A file that changes takes its own place, and a copy of what it was stays beside it.
  bool InPlace = false;
  bool DryRun = false;
};

/// Makes scripts as they leave other tools into scripts of a pack. `scripts` are files, or folders
/// whose .sql files are meant. Shows every change before any file is written. Returns the exit
/// status: 0, or 1 when a file was left as it is. Raises std::exception with a line for the user;
/// nothing is written then, but for what was written before a disk failed.
int ConvertCommand(const std::vector<std::filesystem::path>& scripts, const ConvertOptions& options,
                   const ConvertTarget& target, std::ostream& out);

/// Does the same with AppCfg.txt and the scripts that it lists, and tells what `check` still finds.
int FixCommand(const std::filesystem::path& pack, const ConvertOptions& options,
               const ConvertTarget& target, std::ostream& out);

}  // namespace talu::packcheck
