#pragma once

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

namespace talu::wine {

/// The system data sources of the driver manager underneath: `odbc.ini` in the folder that the
/// environment variable ODBCSYSINI names, with a Unix path. Texts are bytes as they come. Each call
/// raises `std::runtime_error` with one line when the file cannot be found, read or written; the
/// old file stands until the new one is whole.
class OdbcIni {
 public:
  using Entries = std::vector<std::pair<std::string, std::string>>;

  OdbcIni();

  /// Makes the section, or puts it in the place of one of the same name.
  void Replace(const std::string& section, const Entries& entries) const;
  /// A section that is not there is no error.
  void Remove(const std::string& section) const;

 private:
  /// The file without the named section; names are compared without regard to case.
  std::string TextWithout(const std::string& section) const;
  void Write(const std::string& text) const;

  std::filesystem::path path_;
};

}  // namespace talu::wine
