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

  /// Reads up to `size` bytes at `at`; returns how many. Raises std::runtime_error, naming the
  /// file, when the host file cannot be read: this is not an error of the simulated machine.
  std::size_t Read(std::uint64_t at, char* buffer, std::size_t size) const;
  /// Raises as `Read` does, and 7 for a file longer than any text.
  std::string All() const;
};

/// The drives of a simulated machine: backslash paths, case kept and ignored. Raises the same
/// errors as Windows.
class SimulatedDisk {
 public:
  struct Node {
    std::string Name;
    bool IsFolder = false;
    /// Cannot be written, listed or deleted.
    bool Denied = false;
    bool ReadOnly = false;
    /// A junction or another link; nothing looks behind it but what follows links.
    bool IsLink = false;
    /// When it was last written to: the disk's count of writes. A copy has its source's.
    std::uint64_t Written = 0;
    /// The number of handles open for writing.
    int Writers = 0;
    std::shared_ptr<FileContent> Content;
    /// By upper-cased names; UTF-8 sorts as NTFS and Wine do, but for letters above U+FFFF.
    std::map<std::string, std::unique_ptr<Node>> Children;
  };

  /// A path without a drive starts at `currentFolder`, whose drive exists from the start.
  explicit SimulatedDisk(std::string currentFolder);

  Node* Find(const std::string& path);
  bool FileExists(const std::string& path);
  bool FolderExists(const std::string& path);
  void CreateFolder(const std::string& path);
  /// Creates a folder and its parents.
  Node& MakeFolders(const std::string& path);
  /// The folder at `path`. Raises 76, and 70 when it is denied.
  Node& FolderAt(const std::string& path);
  /// The file at `path`, created empty when missing. Raises 76, 75 for a folder, 70 when denied.
  Node& FileForWriting(const std::string& path);
  void DeleteFile(const std::string& path, bool force);
  /// Removes an empty folder. Raises 76, 70 when it is denied, 75 when it is not empty.
  void RemoveFolder(const std::string& path);
  /// Puts a file in the place of another one of the same folder. Raises 53, 70.
  void MoveOver(const std::string& from, const std::string& to);
  /// Copies one file over an existing one; `to` may be a folder. Returns false when it cannot.
  bool CopyFile(const std::string& from, const std::string& to);

  /// Writes a file, and creates all folders above it.
  void WriteFile(const std::string& path, std::string bytes);
  /// The bytes of a file, or nothing when it does not exist.
  std::optional<std::string> ReadFile(const std::string& path);
  /// Adds a host folder's tree at `path`, over existing files. The bytes stay on the host until
  /// they are written to. Raises std::runtime_error for a name that is impossible in Windows, and
  /// for two names that differ only in case.
  void AddHostFolder(const std::filesystem::path& hostFolder, const std::string& path);
  /// Writes all drives except the tree at `except` into a host folder, each into a folder of its
  /// letter. Raises std::runtime_error when a file cannot be written.
  void SaveTo(const std::filesystem::path& hostFolder, const std::string& except);

  /// Takes `bytes` from the free space. Raises 61 when that is not enough.
  void Use(std::uint64_t bytes);
  /// Sets the free space in bytes; unlimited at first.
  void SetFreeSpace(std::uint64_t bytes) { freeSpace_ = bytes; }

  /// Notes that the file is written to now.
  void Touch(Node& file) { file.Written = ++writes_; }

  /// A path with drive, as `NormalizedPath` makes it.
  std::string FullPath(const std::string& path) const;
  /// The path as its folders are spelled; unchanged when nothing exists there.
  std::string OwnSpelling(const std::string& path);

 private:
  Node* NodeAt(const std::string& fullPath);
  Node* Parent(const std::string& fullPath, std::string& name);

  std::string currentFolder_;
  Node root_;
  std::uint64_t freeSpace_ = UINT64_MAX;
  std::uint64_t writes_ = 0;
};

/// Windows' limits on the length of a path, including its end, for a file and for a new folder.
inline constexpr std::ptrdiff_t kMaxPath = 260;
inline constexpr std::ptrdiff_t kMaxFolderPath = 248;

}  // namespace talu
