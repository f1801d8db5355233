#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace talu::packcheck {

/// A pack made by chance: a valid one of random size, and in it up to three things that an author
/// may have done. The same seed makes the same pack everywhere.
struct RandomPack {
  explicit RandomPack(std::uint64_t seed);

  /// Writes the files into the folder, which must be empty or absent.
  void WriteTo(const std::filesystem::path& folder) const;

  /// Host path in the pack and bytes.
  std::map<std::string, std::string> Files;
  /// What was done to the valid pack, a line for each.
  std::vector<std::string> Changes;
  /// The files that were changed, relative to the pack folder, with backslashes.
  std::set<std::string> Changed;
  /// The databases that the fresh scripts of the valid pack make.
  std::vector<std::string> Databases;
  std::vector<std::string> Logins;
};

}  // namespace talu::packcheck
