#include "DatabaseFiles.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <fstream>
#include <system_error>

#include "Messages.h"
#include "SqliteDatabase.h"

namespace talu::standin {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kPlaceholder =
    "This file only holds the place of a file of the real server. It is not used.\n";

[[noreturn]] void Fail(SqlMessage reason) {
  throw SqlFailure({std::move(reason), message::kCreateDatabaseFailed()});
}

/// The files that SQLite keeps next to a database in use.
constexpr std::array<const char*, 2> kSides = {"-wal", "-shm"};

/// A file name for any database name.
std::string FileNameOf(std::string_view database) {
  std::string name;
  for (const char c : database) {
    const bool isPlain = (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') ||
                         (c >= '0' && c <= '9') || c == '_' || c == '-' || c == ' ' ||
                         static_cast<unsigned char>(c) >= 0x80;
    name += isPlain ? c : '_';
  }
  return name;
}

fs::path FreshPath(const std::string& windowsPath, const Drives& drives) {
  const FoundPath found = drives.Find(windowsPath);
  if (!found.FolderExists) Fail(message::kNoDirectory(windowsPath, found.SystemError));
  if (found.Exists) Fail(message::kFileExists(windowsPath));
  if (found.IsProtected) Fail(message::kCannotCreateFile(SystemError(EACCES), windowsPath));
  return found.File;
}

}  // namespace

std::string SystemError(int error) {
  switch (error) {
    case EACCES:
    case EPERM:
    case EROFS:
      return "5(Access is denied.)";
    case ENOSPC:
      return "112(There is not enough space on the disk.)";
    case ENOENT:
      return "2(The system cannot find the file specified.)";
    default:
      return "3(The system cannot find the path specified.)";
  }
}

DatabaseEntry MakeDatabaseFiles(const CreateDatabase& statement, const Drives& drives,
                                const fs::path& dataFolder) {
  DatabaseEntry entry;
  entry.Name = statement.Name;
  if (statement.DataFiles.empty()) {
    entry.File = dataFolder / (FileNameOf(statement.Name) + ".mdf");
    entry.WindowsFile = entry.File.string();
    if (fs::exists(entry.File)) Fail(message::kFileExists(entry.WindowsFile));
  } else {
    entry.WindowsFile = statement.DataFiles.front();
    entry.File = FreshPath(entry.WindowsFile, drives);
    for (std::size_t i = 1; i < statement.DataFiles.size(); ++i) {
      entry.OtherFiles.push_back(FreshPath(statement.DataFiles[i], drives));
    }
  }
  for (const std::string& log : statement.LogFiles)
    entry.OtherFiles.push_back(FreshPath(log, drives));
  if (statement.LogFiles.empty()) {
    const fs::path log = entry.File.parent_path() / (FileNameOf(statement.Name) + "_log.ldf");
    if (fs::exists(log)) Fail(message::kFileExists(log.string()));
    entry.OtherFiles.push_back(log);
  }

  std::vector<fs::path> made;
  const auto giveUp = [&](const fs::path& path) {
    const std::string reason = SystemError(errno);
    std::error_code ignored;
    for (const fs::path& file : made) fs::remove(file, ignored);
    Fail(
        message::kCannotCreateFile(reason, path == entry.File ? entry.WindowsFile : path.string()));
  };
  for (const fs::path& other : entry.OtherFiles) {
    errno = 0;
    std::ofstream file(other, std::ios::binary);
    if (file) made.push_back(other);
    file << kPlaceholder;
    file.close();
    if (!file) giveUp(other);
  }
  errno = 0;
  made.push_back(entry.File);
  if (!SqliteDatabase::MakeFile(entry.File)) giveUp(entry.File);
  return entry;
}

bool IsFileOf(const DatabaseEntry& entry, const fs::path& file) {
  const auto isSame = [&file](const fs::path& own) {
    std::error_code ignored;
    return own == file || fs::equivalent(own, file, ignored);
  };
  return isSame(entry.File) ||
         std::any_of(kSides.begin(), kSides.end(),
                     [&](const char* side) { return isSame(entry.File.string() + side); }) ||
         std::any_of(entry.OtherFiles.begin(), entry.OtherFiles.end(), isSame);
}

void RemoveDatabaseFiles(const DatabaseEntry& entry) {
  std::error_code ignored;
  fs::remove(entry.File, ignored);
  for (const char* side : kSides) fs::remove(entry.File.string() + side, ignored);
  for (const fs::path& other : entry.OtherFiles) fs::remove(other, ignored);
}

}  // namespace talu::standin
