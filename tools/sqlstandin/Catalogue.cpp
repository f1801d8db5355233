#include "Catalogue.h"

#include <algorithm>
#include <chrono>
#include <system_error>

#include "DatabaseFiles.h"
#include "Messages.h"
#include "Text.h"

namespace talu::standin {
namespace {

constexpr std::chrono::seconds kLongestWaitForOthers{10};

}  // namespace

const DatabaseEntry* Catalogue::Search(std::string_view name) const {
  const auto found = std::find_if(databases_.begin(), databases_.end(),
                                  [name](const auto& entry) { return SameName(entry.Name, name); });
  return found == databases_.end() ? nullptr : &*found;
}

DatabaseEntry& Catalogue::ById(int id) {
  const auto found = std::find_if(databases_.begin(), databases_.end(),
                                  [id](const auto& entry) { return entry.Id == id; });
  if (found == databases_.end()) throw SqlFailure(message::kNoSuchDatabase(""), true);
  return *found;
}

void Catalogue::Join(int session, std::function<void()> end) {
  const std::lock_guard lock(mutex_);
  sessions_[session] = {0, std::move(end)};
}

void Catalogue::Leave(int session) {
  const std::lock_guard lock(mutex_);
  sessions_.erase(session);
  left_.notify_all();
}

DatabaseEntry Catalogue::Find(const std::string& name) const {
  const std::lock_guard lock(mutex_);
  const DatabaseEntry* entry = Search(name);
  if (entry == nullptr) throw SqlFailure(message::kNoSuchDatabase(name), true);
  if (!entry->IsOnline) throw SqlFailure(message::kDatabaseOffline(entry->Name), true);
  return *entry;
}

bool Catalogue::Exists(const std::string& name) const {
  const std::lock_guard lock(mutex_);
  return Search(name) != nullptr;
}

std::vector<DatabaseEntry> Catalogue::All() const {
  const std::lock_guard lock(mutex_);
  return databases_;
}

std::vector<std::string> Catalogue::Logins() const {
  const std::lock_guard lock(mutex_);
  std::vector<std::string> names;
  for (const LoginEntry& login : logins_) names.push_back(login.Name);
  return names;
}

bool Catalogue::IsDatabaseFile(const std::filesystem::path& file) const {
  const std::lock_guard lock(mutex_);
  return std::any_of(databases_.begin(), databases_.end(),
                     [&file](const auto& entry) { return IsFileOf(entry, file); });
}

DatabaseEntry Catalogue::Use(int session, const std::string& name) {
  const std::lock_guard lock(mutex_);
  const DatabaseEntry* entry = Search(name);
  if (entry == nullptr) throw SqlFailure(message::kNoSuchDatabase(name), true);
  if (!entry->IsOnline) throw SqlFailure(message::kDatabaseOffline(entry->Name), true);
  sessions_.at(session).Database = entry->Id;
  left_.notify_all();
  return *entry;
}

void Catalogue::Create(const CreateDatabase& statement) {
  const std::lock_guard lock(mutex_);
  if (Search(statement.Name) != nullptr) {
    throw SqlFailure(message::kDatabaseExists(statement.Name));
  }
  DatabaseEntry entry = MakeDatabaseFiles(statement, drives_, folder_);
  entry.Id = nextId_++;
  entry.Created = LocalTimeText();
  databases_.push_back(std::move(entry));
  Save();
}

std::vector<int> Catalogue::OthersIn(int database, int session) const {
  std::vector<int> others;
  for (const auto& [number, entry] : sessions_) {
    if (entry.Database == database && number != session) others.push_back(number);
  }
  return others;
}

void Catalogue::EndOthers(std::unique_lock<std::mutex>& lock, const DatabaseEntry& database,
                          int session) {
  const int id = database.Id;
  for (const int other : OthersIn(id, session)) sessions_.at(other).End();
  if (!left_.wait_for(lock, kLongestWaitForOthers, [&] { return OthersIn(id, session).empty(); })) {
    throw SqlFailure({message::kAlterLockFailed(database.Name), message::kAlterDatabaseFailed()});
  }
}

void Catalogue::Alter(int session, const AlterDatabase& statement) {
  using Action = AlterDatabase::Action;
  std::unique_lock lock(mutex_);
  const DatabaseEntry* found = Search(statement.Name);
  if (found == nullptr) {
    throw SqlFailure(
        {message::kCannotAlterDatabase(statement.Name), message::kAlterDatabaseFailed()});
  }
  const DatabaseEntry entry = *found;
  if (entry.Name == kMasterName && statement.What != Action::None) {
    throw SqlFailure(message::kOptionNotAllowed(
        statement.What == Action::Offline ? "OFFLINE" : "SINGLE_USER", entry.Name));
  }
  switch (statement.What) {
    case Action::None:
      return;
    case Action::Online: {
      std::error_code error;
      if (!std::filesystem::exists(entry.File, error)) {
        throw SqlFailure(
            {message::kDatabaseInaccessible(entry.Name), message::kAlterDatabaseFailed()});
      }
      ById(entry.Id).IsOnline = true;
      Save();
      return;
    }
    case Action::SingleUser:
      if (statement.EndsOthers) EndOthers(lock, entry, session);
      return;
    case Action::Offline:
      break;
  }
  if (!statement.EndsOthers && !OthersIn(entry.Id, session).empty()) {
    throw SqlFailure({message::kAlterLockFailed(entry.Name), message::kAlterDatabaseFailed()});
  }
  ById(entry.Id).IsOnline = false;  // from now on no session can enter
  Save();
  EndOthers(lock, entry, session);
}

void Catalogue::Drop(const std::string& name) {
  const std::lock_guard lock(mutex_);
  const DatabaseEntry* found = Search(name);
  if (found == nullptr) throw SqlFailure(message::kCannotDrop("database", name));
  if (found->Name == kMasterName) throw SqlFailure(message::kSystemDatabase(found->Name));
  if (!OthersIn(found->Id, 0).empty()) throw SqlFailure(message::kDatabaseInUse(found->Name));
  const DatabaseEntry entry = *found;
  std::erase_if(databases_, [&entry](const auto& each) { return each.Id == entry.Id; });
  Save();
  // "If the database or any one of its files is offline when it is dropped, the disk files are not
  // deleted": the public reference of DROP DATABASE.
  if (entry.IsOnline) RemoveDatabaseFiles(entry);
}

}  // namespace talu::standin
