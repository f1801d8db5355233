#pragma once

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

namespace talu::wine {

/// The system data sources of the driver manager below: `odbc.ini` in the folder that the
/// environment variable ODBCSYSINI names, with a Unix path. Texts are raw bytes. Each call raises
/// `std::runtime_error` with one line when the file cannot be found, read or written; the old file
/// stays until the new one is complete.
class OdbcIni {
 public:
  using Entries = std::vector<std::pair<std::string, std::string>>;

  OdbcIni();

  /// Adds the section, or replaces the one with the same name.
  void Replace(const std::string& section, const Entries& entries) const;
  /// Removes the section; a missing one is no error.
  void Remove(const std::string& section) const;

 private:
  /// The file without the named section; case is ignored in names.
  std::string TextWithout(const std::string& section) const;
  void Write(const std::string& text) const;

  std::filesystem::path path_;
};

}  // namespace talu::wine
