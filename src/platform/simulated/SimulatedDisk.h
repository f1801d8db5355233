#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace talu {

/// The bytes of a simulated file: in memory, or still in a host file until they are written to.
struct FileContent {
  std::string Bytes;
  std::filesystem::path HostFile;
  std::uint64_t Size = 0;

  /// Reads up to `size` bytes at `at`; returns how many. Raises std::runtime_error, which names the
  /// file, when the host file cannot be read: that is no error of the simulated machine.
  std::size_t Read(std::uint64_t at, char* buffer, std::size_t size) const;
  /// Raises as `Read` does, and 7 for a file longer than any text.
  std::string All() const;
};

/// The order in which a folder lists its entries, by their upper-cased names: that of Unicode, as
/// NTFS and Wine have it.
struct ListingOrder {
  using is_transparent = void;
  bool operator()(std::string_view a, std::string_view b) const;
};

/// The drives of a simulated machine: backslash paths, case kept and ignored. Raises what Windows
/// raises.
class SimulatedDisk {
 public:
  struct Node {
    std::string Name;
    bool IsFolder = false;
    /// May not be written, listed or deleted.
    bool Denied = false;
    bool ReadOnly = false;
    /// Handles that are open for writing.
    int Writers = 0;
    std::shared_ptr<FileContent> Content;
    std::map<std::string, std::unique_ptr<Node>, ListingOrder> Children;  // by upper-cased name
  };

  /// `currentFolder` is where a path without a drive starts; its drive is there at once.
  explicit SimulatedDisk(std::string currentFolder);

  Node* Find(const std::string& path);
  bool FileExists(const std::string& path);
  bool FolderExists(const std::string& path);
  void CreateFolder(const std::string& path);
  /// Creates a folder and all above it.
  Node& MakeFolders(const std::string& path);
  /// The folder at `path`. Raises 76, and 70 when it is denied.
  Node& FolderAt(const std::string& path);
  /// The file at `path`, made empty when it is missing. Raises 76, 75 for a folder, 70 when denied.
  Node& FileForWriting(const std::string& path);
  void DeleteFile(const std::string& path, bool force);
  /// Copies one file over what is there; `to` may be a folder. False when that is impossible.
  bool CopyFile(const std::string& from, const std::string& to);

  /// Puts a file there, with all folders above it.
  void WriteFile(const std::string& path, std::string bytes);
  /// The bytes of a file; nothing when there is none.
  std::optional<std::string> ReadFile(const std::string& path);
  /// Puts a host folder's tree at `path`, over what is there. The bytes stay on the host until
  /// something is written to them. Raises std::runtime_error for a name that Windows-1252 or
  /// Windows cannot have, and for two names that differ in case only.
  void AddHostFolder(const std::filesystem::path& hostFolder, const std::string& path);
  /// Writes all drives into a host folder, each into a folder of its letter, without the tree at
  /// `except`. Raises std::runtime_error when a file cannot be written.
  void SaveTo(const std::filesystem::path& hostFolder, const std::string& except);

  /// Takes `bytes` of the free space. Raises 61 when there is not so much.
  void Use(std::uint64_t bytes);
  /// Sets the free space in bytes; without limit at first.
  void SetFreeSpace(std::uint64_t bytes) { freeSpace_ = bytes; }

  /// A path with drive, without doubled or trailing backslashes; a component's trailing blanks and
  /// dots are dropped, as Windows does.
  std::string FullPath(const std::string& path) const;
  /// The path as the folders on it are spelled; as it is given where there is nothing at it.
  std::string OwnSpelling(const std::string& path);

 private:
  Node* Parent(const std::string& fullPath, std::string& name);

  std::string currentFolder_;
  Node root_;
  std::uint64_t freeSpace_ = UINT64_MAX;
};

/// Windows' limits on the length of a path, its end included (file) and for a new folder.
inline constexpr std::size_t kMaxPath = 260;
inline constexpr std::size_t kMaxFolderPath = 248;

}  // namespace talu
