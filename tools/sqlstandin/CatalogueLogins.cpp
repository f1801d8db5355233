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

NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE(DatabaseEntry, Id, Name, File, WindowsFile, OtherFiles, IsOnline,
                                   Created, Users)
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE(LoginEntry, Name, Hash)

namespace {

using nlohmann::json;

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
    stored.at("nextId").get_to(nextId_);
    stored.at("databases").get_to(databases_);
    stored.at("logins").get_to(logins_);
  } catch (const json::exception& error) {
    throw std::runtime_error("the catalogue cannot be read: " +
                             (folder_ / "catalogue.json").string() + ": " + error.what());
  }
}

/// As JSON; a name may have bytes that are no text.
std::string Catalogue::Text(int indent) const {
  const json stored = {{"nextId", nextId_}, {"databases", databases_}, {"logins", logins_}};
  return stored.dump(indent, ' ', false, json::error_handler_t::replace);
}

std::string Catalogue::AsJson() const {
  const std::lock_guard lock(mutex_);
  return Text(-1);
}

void Catalogue::Save() const {
  const std::filesystem::path path = folder_ / "catalogue.json";
  const std::filesystem::path fresh = folder_ / "catalogue.json.new";
  std::ofstream file(fresh, std::ios::binary | std::ios::trunc);
  std::filesystem::permissions(
      fresh, std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
  file << Text(1) << '\n';
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

void Catalogue::CreateLogin(const std::string& name, const std::optional<std::string>& password) {
  const std::string hash = password ? NewHash(*password) : std::string();
  const std::lock_guard lock(mutex_);
  if (IsLogin(name)) throw SqlFailure(message::kLoginExists(name));
  logins_.push_back({name, hash});
  Save();
}

void Catalogue::DropLogin(const std::string& name) {
  const std::lock_guard lock(mutex_);
  const auto removed = std::erase_if(
      logins_, [&name](const LoginEntry& login) { return SameName(login.Name, name); });
  if (removed == 0) throw SqlFailure(message::kNoSuchPrincipal("drop", "login", name));
  Save();
}

void Catalogue::CreateUser(int databaseId, const std::string& name, const std::string& login) {
  const std::lock_guard lock(mutex_);
  if (!login.empty() && !IsLogin(login)) throw SqlFailure(message::kNotALogin(login));
  std::vector<std::string>& users = ById(databaseId).Users;
  const auto isSame = [&name](const std::string& user) { return SameName(user, name); };
  if (SameName(name, "dbo") || std::ranges::any_of(users, isSame)) {
    throw SqlFailure(message::kUserExists(name));
  }
  users.push_back(name);
  Save();
}

void Catalogue::DropUser(int databaseId, const std::string& name, bool ifExists) {
  const std::lock_guard lock(mutex_);
  const auto removed = std::erase_if(
      ById(databaseId).Users, [&name](const std::string& user) { return SameName(user, name); });
  if (removed == 0 && !ifExists) throw SqlFailure(message::kNoSuchPrincipal("drop", "user", name));
  Save();
}

}  // namespace talu::standin
