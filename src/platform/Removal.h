#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace talu {

/// What stands at a path. A link is a junction, a symbolic link or any other reparse point; nobody
/// looks behind it.
enum class EntryKind { Missing, File, Folder, Link };

struct DiskEntry {
  std::string Name;
  EntryKind Kind = EntryKind::Missing;
  /// When it was last written to, in any unit that grows with time. A copy has its source's.
  std::uint64_t Written = 0;
};

/// A system data source as it is stored. A value that it does not have is empty.
struct DataSource {
  std::string Driver;
  std::string Server;
  std::string Database;
  /// The database file ("DBQ").
  std::string File;
};

/// What taking an installation back asks of a machine beyond what installing asks. Paths are
/// absolute.
class Removal {
 public:
  virtual ~Removal() = default;

  /// What stands at the path, whose last component is not followed when it is a link. Raises 70
  /// when that cannot be told.
  virtual DiskEntry Look(const std::string& path) = 0;
  /// All entries of a folder, hidden ones too, in the file system's order. Raises 76 when it is
  /// missing, 70 when it may not be read.
  virtual std::vector<DiskEntry> List(const std::string& folder) = 0;
  /// Removes one file, a read-only one too. The running program's own file is out of its folder
  /// when the call returns. Raises 53 when it is missing, 70 when it is in use or protected, 75 for
  /// a link or a folder.
  virtual void RemoveFile(const std::string& path) = 0;
  /// Removes one empty folder. Raises 76 when it is missing, 70 when it is in use or protected, 75
  /// when it is not empty, or a link or a file.
  virtual void RemoveFolder(const std::string& path) = 0;
  /// Puts the file `from` in the place of the file `to`, of the same folder, at one blow: at any
  /// moment `to` is the old file or the new one, on the disk too. Raises 53, 70.
  virtual void Replace(const std::string& from, const std::string& to) = 0;
  /// Whether two files have the same bytes. Raises 53 when one is missing, 70 when one cannot be
  /// read, 57 when reading fails.
  virtual bool SameBytes(const std::string& one, const std::string& other) = 0;

  /// Where a shortcut leads, which need not exist; empty when it leads to no file. Raises 53 when
  /// it is missing, 5 when it is no shortcut.
  virtual std::string ShortcutTarget(const std::string& path) = 0;

  /// The system data source of this name, or nothing. Raises 53 when the library is missing.
  virtual std::optional<DataSource> SystemDataSource(const std::string& name) = 0;
  /// Removes a system data source. Returns whether the library did it; raises 53 when it is
  /// missing.
  virtual bool RemoveSystemDataSource(const std::string& driver, const std::string& name) = 0;

  /// Starts a program of the system's folder, named without folder and ending, waits until it ends,
  /// with windows alive, and returns its exit code; -1 when it cannot be started.
  virtual std::int32_t RunSystemProgram(const std::string& name, const std::string& arguments) = 0;
};

}  // namespace talu
