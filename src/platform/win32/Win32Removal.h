#pragma once

#include <functional>

#include "platform/OdbcInstaller.h"
#include "platform/Removal.h"
#include "platform/win32/Windows.h"

namespace talu {

/// Removing, over kernel32, the shell and odbccp32.dll. What is removed is one open file or folder,
/// looked at by its handle: nobody can put a link in its place, or on the way to it from the
/// application folder, between a look and the removal.
class Win32Removal : public Removal {
 public:
  /// `wait` returns when the handle is set and handles window events meanwhile. `appFolder` is the
  /// application folder's long path.
  Win32Removal(std::function<void(HANDLE)> wait, OdbcInstaller& odbc, const std::string& appFolder);

  DiskEntry Look(const std::string& path) override;
  std::vector<DiskEntry> List(const std::string& folder) override;
  void RemoveFile(const std::string& path) override;
  void RemoveFolder(const std::string& path) override;
  void Replace(const std::string& from, const std::string& to) override;
  bool SameBytes(const std::string& one, const std::string& other) override;
  std::string ShortcutTarget(const std::string& path) override;
  std::optional<DataSource> SystemDataSource(const std::string& name) override;
  bool RemoveSystemDataSource(const std::string& driver, const std::string& name) override;
  std::int32_t RunSystemProgram(const std::string& name, const std::string& arguments) override;

 private:
  std::function<void(HANDLE)> wait_;
  OdbcInstaller& odbc_;
  std::wstring appFolder_;
};

}  // namespace talu
