#pragma once

#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <string>

namespace talu::packcheck {

/// A configuration block; every line of `values` ends in CR LF.
inline std::string Block(const std::string& key, const std::string& values) {
  return key + "\r\n{\r\n" + values + "}\r\n";
}

/// A host folder of its own, removed at the end.
class HostFolder {
 public:
  HostFolder() {
    std::string name = (std::filesystem::temp_directory_path() / "packcheck.XXXXXX").string();
    Path = mkdtemp(name.data());
  }
  ~HostFolder() { std::filesystem::remove_all(Path); }
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

}  // namespace talu::packcheck
