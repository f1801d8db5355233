#pragma once

#include <filesystem>
#include <iosfwd>
#include <string>
#include <vector>

#include "ConvertCommand.h"

namespace talu::packcheck {

/// The path in UTF-8, with the separators of the host.
std::string Utf8Path(const std::filesystem::path& path);

/// Collects the files that are to be written, and writes them when all of them are known.
class ConvertedFiles {
 public:
  ConvertedFiles(const ConvertOptions& options, const ConvertTarget& target, std::ostream& out);

  /// Converts a host file, tells what becomes of it, and returns it. `place` is its path within the
  /// target's folder. Raises std::runtime_error when it cannot be read or would overwrite another.
  ConvertedFile Take(const std::filesystem::path& file, const std::filesystem::path& place,
                     FileKind kind);
  /// Writes them and tells which. Raises std::runtime_error when one cannot be written.
  void Write();
  /// The exit status.
  int Status() const { return left_ ? 1 : 0; }

 private:
  struct Waiting {
    std::filesystem::path From;
    std::filesystem::path To;
    std::string Bytes;
  };

  const ConvertOptions& options_;
  const ConvertTarget& target_;
  std::ostream& out_;
  std::vector<Waiting> waiting_;
  bool left_ = false;
};

}  // namespace talu::packcheck
