#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "platform/Removal.h"
#include "platform/simulated/Journal.h"
#include "platform/simulated/SimulatedDisk.h"
#include "platform/simulated/SimulatedShell.h"

namespace talu {

/// What taking an installation back asks, over a simulated disk and its data sources. A shortcut is
/// a file with the path that it leads to.
class SimulatedRemoval : public Removal {
 public:
  SimulatedRemoval(Journal& journal, SimulatedDisk& disk, SimulatedOdbc& odbc)
      : journal_(journal), disk_(disk), odbc_(odbc) {}

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

  /// Exit codes by a part of the arguments; 0 for any other.
  std::map<std::string, std::int32_t> ExitCodes;

 private:
  /// Raises 53, and 70 when it is denied.
  const FileContent& ContentOf(const std::string& path);

  Journal& journal_;
  SimulatedDisk& disk_;
  SimulatedOdbc& odbc_;
};

}  // namespace talu
