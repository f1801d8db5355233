#pragma once

#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <string>

namespace talu {

/// A folder of this machine for one test, removed at its end.
class HostFolder {
 public:
  HostFolder() {
    std::string name = (std::filesystem::temp_directory_path() / "test.XXXXXX").string();
    Path = mkdtemp(name.data());
  }
  ~HostFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(Path, ignored);
  }
  HostFolder(const HostFolder&) = delete;
  HostFolder& operator=(const HostFolder&) = delete;

  /// Puts a file there, with the folders above it.
  void Put(const std::string& path, const std::string& bytes) const {
    std::filesystem::create_directories((Path / path).parent_path());
    std::ofstream(Path / path, std::ios::binary) << bytes;
  }
  std::string Get(const std::string& path) const {
    std::ifstream file(Path / path, std::ios::binary);
    return file ? std::string(std::istreambuf_iterator<char>(file), {}) : "(none)";
  }

  std::filesystem::path Path;
};

}  // namespace talu
