#pragma once

#include <string>

namespace talu {

/// The ODBC installer library.
class OdbcInstaller {
 public:
  virtual ~OdbcInstaller() = default;
  /// `SQLConfigDataSource` with no parent window. Request 4 adds a system data source. Pairs in
  /// `attributes` are separated by NUL characters, none after the last; the call terminates the
  /// list. Returns whether the library accepted it; raises 53 when the library is missing.
  virtual bool SQLConfigDataSource(int request, const std::string& driver,
                                   const std::string& attributes) = 0;
};

}  // namespace talu
