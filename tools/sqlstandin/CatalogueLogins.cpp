// The catalogue's logins and users, and its file.
#include <crypt.h>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <ctime>
#include <fstream>
#include <memory>
#include <nlohmann/json.hpp>
#include <stdexcept>

#include "Catalogue.h"
#include "DatabaseFiles.h"
#include "Messages.h"
#include "Text.h"

namespace talu::standin {
namespace {

using nlohmann::json;

/// JSON text of a value that may contain any bytes.
std::string Dump(const json& value, int indent = -1) {
  return value.dump(indent, ' ', false, json::error_handler_t::replace);
}

/// Hashes a password with the method and salt of the hash in `setting`; empty when that fails.
std::string HashPassword(const std::string& password, const char* setting) {
  const auto work = std::make_unique<crypt_data>();
  const char* hash = crypt_r(password.c_str(), setting, work.get());
  return hash == nullptr || hash[0] == '*' ? std::string() : std::string(hash);
}

std::string NewHash(const std::string& password) {
  std::array<char, CRYPT_GENSALT_OUTPUT_SIZE> setting{};
  if (crypt_gensalt_rn("$6$", 1000, nullptr, 0, setting.data(), static_cast<int>(setting.size())) ==
      nullptr) {
    return {};
  }
  return HashPassword(password, setting.data());
}

bool Contains(const std::vector<std::string>& names, std::string_view name) {
  return std::any_of(names.begin(), names.end(),
                     [name](const std::string& each) { return SameName(each, name); });
}

}  // namespace

std::string LocalTimeText() {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  localtime_r(&now, &local);
  std::array<char, 32> text{};
  const std::size_t size = std::strftime(text.data(), text.size(), "%Y-%m-%d %H:%M:%S", &local);
  return {text.data(), size};
}

Catalogue::Catalogue(const std::filesystem::path& dataFolder, Drives drives, std::string adminName,
                     std::string adminPassword)
    : folder_(std::filesystem::absolute(dataFolder)),
      drives_(std::move(drives)),
      adminName_(std::move(adminName)),
      adminPassword_(std::move(adminPassword)) {
  std::filesystem::create_directories(folder_);
  lockFile_ = open((folder_ / "lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
  if (lockFile_ < 0 || flock(lockFile_, LOCK_EX | LOCK_NB) != 0) {
    if (lockFile_ >= 0) close(lockFile_);
    throw std::runtime_error("the data folder cannot be used, or another server uses it: " +
                             folder_.string());
  }
  Load();
}

Catalogue::~Catalogue() {
  close(lockFile_);
}

void Catalogue::Load() {
  std::ifstream file(folder_ / "catalogue.json", std::ios::binary);
  if (!file) {
    CreateDatabase master;
    master.Name = kMasterName;
    DatabaseEntry entry = MakeDatabaseFiles(master, drives_, folder_);
    entry.Id = 1;
    entry.Created = LocalTimeText();
    databases_.push_back(std::move(entry));
    Save();
    return;
  }
  try {
    const json stored = json::parse(file);
    nextId_ = stored.at("nextId");
    for (const json& item : stored.at("databases")) {
      DatabaseEntry entry;
      entry.Id = item.at("id");
      entry.Name = item.at("name");
      entry.File = item.at("file").get<std::string>();
      entry.WindowsFile = item.at("windowsFile");
      for (const json& other : item.at("otherFiles")) {
        entry.OtherFiles.emplace_back(other.get<std::string>());
      }
      entry.IsOnline = item.at("online");
      entry.Created = item.at("created");
      entry.Users = item.at("users").get<std::vector<std::string>>();
      databases_.push_back(std::move(entry));
    }
    for (const json& item : stored.at("logins")) {
      logins_.push_back({item.at("name"), item.at("hash")});
    }
  } catch (const json::exception& error) {
    throw std::runtime_error("the catalogue cannot be read: " +
                             (folder_ / "catalogue.json").string() + ": " + error.what());
  }
}

void Catalogue::Save() const {
  json stored = {{"nextId", nextId_}, {"databases", json::array()}, {"logins", json::array()}};
  for (const DatabaseEntry& entry : databases_) {
    json others = json::array();
    for (const auto& other : entry.OtherFiles) others.push_back(other.string());
    stored["databases"].push_back({{"id", entry.Id},
                                   {"name", entry.Name},
                                   {"file", entry.File.string()},
                                   {"windowsFile", entry.WindowsFile},
                                   {"otherFiles", others},
                                   {"online", entry.IsOnline},
                                   {"created", entry.Created},
                                   {"users", entry.Users}});
  }
  for (const LoginEntry& login : logins_) {
    stored["logins"].push_back({{"name", login.Name}, {"hash", login.Hash}});
  }
  const std::filesystem::path path = folder_ / "catalogue.json";
  const std::filesystem::path fresh = folder_ / "catalogue.json.new";
  std::ofstream file(fresh, std::ios::binary | std::ios::trunc);
  std::filesystem::permissions(
      fresh, std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
  file << Dump(stored, 1) << '\n';
  file.close();
  if (!file) throw SqlFailure(message::kOwn("the catalogue cannot be written"));
  std::filesystem::rename(fresh, path);
}

bool Catalogue::MayLogIn(const std::string& name, const std::string& password) const {
  if (SameName(name, adminName_)) return password == adminPassword_;
  std::string hash;
  {
    const std::lock_guard lock(mutex_);
    for (const LoginEntry& login : logins_) {
      if (SameName(login.Name, name)) hash = login.Hash;
    }
  }
  if (hash.empty() || password.find('\0') != std::string::npos) return false;
  return HashPassword(password, hash.c_str()) == hash;
}

bool Catalogue::IsLogin(std::string_view name) const {
  return SameName(name, adminName_) ||
         std::any_of(logins_.begin(), logins_.end(),
                     [name](const LoginEntry& login) { return SameName(login.Name, name); });
}

void Catalogue::CreateLogin(const standin::CreateLogin& statement) {
  const std::string hash = statement.IsWindows ? std::string() : NewHash(statement.Password);
  const std::lock_guard lock(mutex_);
  if (IsLogin(statement.Name)) throw SqlFailure(message::kLoginExists(statement.Name));
  logins_.push_back({statement.Name, hash});
  Save();
}

void Catalogue::DropLogin(const std::string& name) {
  const std::lock_guard lock(mutex_);
  const auto removed = std::erase_if(
      logins_, [&name](const LoginEntry& login) { return SameName(login.Name, name); });
  if (removed == 0) throw SqlFailure(message::kNoSuchPrincipal("drop", "login", name));
  Save();
}

void Catalogue::CreateUser(int databaseId, const standin::CreateUser& statement) {
  const std::lock_guard lock(mutex_);
  if (!statement.Login.empty() && !IsLogin(statement.Login)) {
    throw SqlFailure(message::kNotALogin(statement.Login));
  }
  std::vector<std::string>& users = ById(databaseId).Users;
  if (SameName(statement.Name, "dbo") || Contains(users, statement.Name)) {
    throw SqlFailure(message::kUserExists(statement.Name));
  }
  users.push_back(statement.Name);
  Save();
}

void Catalogue::DropUser(int databaseId, const std::string& name, bool ifExists) {
  const std::lock_guard lock(mutex_);
  const auto removed = std::erase_if(
      ById(databaseId).Users, [&name](const std::string& user) { return SameName(user, name); });
  if (removed == 0 && !ifExists) throw SqlFailure(message::kNoSuchPrincipal("drop", "user", name));
  Save();
}

std::string Catalogue::DatabasesAsJson() const {
  const std::lock_guard lock(mutex_);
  json rows = json::array();
  for (const DatabaseEntry& entry : databases_) {
    rows.push_back({{"name", entry.Name},
                    {"database_id", entry.Id},
                    {"state", entry.IsOnline ? 0 : 6},
                    {"state_desc", entry.IsOnline ? "ONLINE" : "OFFLINE"},
                    {"create_date", entry.Created},
                    {"filename", entry.WindowsFile}});
  }
  return Dump(rows);
}

std::string Catalogue::LoginsAsJson() const {
  const std::lock_guard lock(mutex_);
  json rows = json::array({{{"name", adminName_}, {"type", "S"}, {"type_desc", "SQL_LOGIN"}}});
  for (const LoginEntry& login : logins_) {
    const bool isWindows = login.Hash.empty();
    rows.push_back({{"name", login.Name},
                    {"type", isWindows ? "U" : "S"},
                    {"type_desc", isWindows ? "WINDOWS_LOGIN" : "SQL_LOGIN"}});
  }
  return Dump(rows);
}

std::string Catalogue::UsersAsJson(int databaseId) const {
  const std::lock_guard lock(mutex_);
  json rows = json::array({{{"name", "dbo"}}});
  for (const DatabaseEntry& entry : databases_) {
    if (entry.Id != databaseId) continue;
    for (const std::string& user : entry.Users) rows.push_back({{"name", user}});
  }
  return Dump(rows);
}

}  // namespace talu::standin
