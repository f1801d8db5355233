#pragma once

#include <condition_variable>
#include <filesystem>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Drives.h"
#include "Statements.h"

namespace talu::standin {

/// A database that the server knows.
struct DatabaseEntry {
  int Id = 0;
  std::string Name;
  /// Its SQLite file, at the path of the primary data file.
  std::filesystem::path File;
  /// The same path as the client wrote it.
  std::string WindowsFile;
  /// Log and secondary data files: placeholders.
  std::vector<std::filesystem::path> OtherFiles;
  bool IsOnline = true;
  std::string Created;
  std::vector<std::string> Users;
};

struct LoginEntry {
  std::string Name;
  /// The password's hash from crypt(3); empty when nobody can log in.
  std::string Hash;
};

inline constexpr std::string_view kMasterName = "master";

/// The server's databases, logins and sessions. It is stored in a file in the data folder, so it
/// outlives the process. Safe to use from several threads; whatever a client can do wrong raises
/// SqlFailure.
class Catalogue {
 public:
  /// Raises std::runtime_error when the data folder cannot be used or another server uses it.
  Catalogue(const std::filesystem::path& dataFolder, Drives drives, std::string adminName,
            std::string adminPassword);
  ~Catalogue();
  Catalogue(const Catalogue&) = delete;
  Catalogue& operator=(const Catalogue&) = delete;

  const Drives& AllDrives() const { return drives_; }

  /// Whether the login exists and the password is right.
  bool MayLogIn(const std::string& name, const std::string& password) const;

  /// Registers a session; `end` is called, on another session's thread, when that ends its use.
  void Join(int session, std::function<void()> end);
  void Leave(int session);

  /// Makes a database the session's current one (911, 942).
  DatabaseEntry Use(int session, const std::string& name);
  /// A database that is online (911, 942).
  DatabaseEntry Find(const std::string& name) const;
  bool Exists(const std::string& name) const;
  /// The databases, in the order of their creation.
  std::vector<DatabaseEntry> All() const;
  /// The logins but for the administrator's.
  std::vector<std::string> Logins() const;
  /// Whether a file belongs to a database.
  bool IsDatabaseFile(const std::filesystem::path& file) const;

  void Create(const CreateDatabase& statement);
  /// If the statement ends the other sessions' use, waits until they have let go.
  void Alter(int session, const AlterDatabase& statement);
  /// Also deletes the files, except those of an offline database, as the real server does.
  void Drop(const std::string& name);

  /// Without a password nobody can log in: a login of Windows.
  void CreateLogin(const std::string& name, const std::optional<std::string>& password);
  void DropLogin(const std::string& name);
  /// `login` may be empty: WITHOUT LOGIN.
  void CreateUser(int databaseId, const std::string& name, const std::string& login);
  void DropUser(int databaseId, const std::string& name, bool ifExists = false);

  const std::string& Administrator() const { return adminName_; }
  /// The databases and logins as the catalogue's file has them.
  std::string AsJson() const;

 private:
  struct SessionEntry {
    int Database = 0;
    std::function<void()> End;
  };

  void Load();
  void Save() const;
  std::string Text(int indent) const;
  const DatabaseEntry* Search(std::string_view name) const;
  DatabaseEntry& ById(int id);
  bool IsLogin(std::string_view name) const;
  std::vector<int> OthersIn(int database, int session) const;
  void EndOthers(std::unique_lock<std::mutex>& lock, const DatabaseEntry& database, int session);

  std::filesystem::path folder_;
  Drives drives_;
  std::string adminName_;
  std::string adminPassword_;
  int lockFile_ = -1;

  mutable std::mutex mutex_;
  std::condition_variable left_;
  int nextId_ = 5;  // 1 to 4 are the system databases of the real server
  std::vector<DatabaseEntry> databases_;
  std::vector<LoginEntry> logins_;
  std::map<int, SessionEntry> sessions_;
};

/// The current local time as the server prints it: 2012-03-07 09:05:00.
std::string LocalTimeText();

}  // namespace talu::standin
