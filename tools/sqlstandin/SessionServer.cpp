// The statements about databases and logins.
#include <array>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <system_error>

#include "DatabaseFiles.h"
#include "Session.h"
#include "Text.h"

namespace talu::standin {

void Session::Use(const std::string& name) {
  const std::string before = facts_.Current.Name;
  SwitchTo(name);
  reply_->DatabaseChanged(facts_.Current.Name, before);
}

void Session::Do(const CatalogueStatement& statement) {
  using Action = CatalogueStatement::Action;
  const int database = facts_.Current.Id;
  if (statement.What == Action::Drop) RefuseInTransaction("DROP DATABASE");
  for (const std::string& name : statement.Names) {
    switch (statement.What) {
      case Action::Use:
        Use(name);
        reply_->Tell(message::kDatabaseContext(facts_.Current.Name), 1);
        break;
      case Action::Drop:
        if (!statement.IfExists || catalogue_.Exists(name)) catalogue_.Drop(name);
        break;
      case Action::CreateLogin:
        catalogue_.CreateLogin(name, statement.Value);
        break;
      case Action::DropLogin:
        catalogue_.DropLogin(name);
        break;
      case Action::CreateUser:
        catalogue_.CreateUser(database, name, statement.Value.value_or(""));
        break;
      case Action::DropUser:
        catalogue_.DropUser(database, name, statement.IfExists);
        break;
    }
  }
  Done();
}

void Session::RefuseInTransaction(std::string_view statement) const {
  if (transactions_ > 0) throw SqlFailure(message::kNotInTransaction(statement));
}

void Session::Do(const CreateDatabase& statement) {
  RefuseInTransaction("CREATE DATABASE");
  catalogue_.Create(statement);
  Done();
}

void Session::Do(const AlterDatabase& statement) {
  RefuseInTransaction("ALTER DATABASE");
  AlterDatabase named = statement;
  if (named.Name.empty()) named.Name = facts_.Current.Name;
  catalogue_.Alter(number_, named);
  if (statement.What == AlterDatabase::Action::Offline &&
      SameName(named.Name, facts_.Current.Name)) {
    Use(std::string(kMasterName));
  }
  Done();
}

void Session::Do(const BackupDatabase& statement) {
  RefuseInTransaction("BACKUP DATABASE");
  namespace fs = std::filesystem;
  const auto fail = [](SqlMessage reason) {
    throw SqlFailure({std::move(reason), message::kBackupFailed()});
  };
  DatabaseEntry entry;
  try {
    entry = catalogue_.Find(statement.Name);
  } catch (const SqlFailure& failure) {
    fail(failure.Messages.front());
  }
  const FoundPath target = catalogue_.AllDrives().Find(statement.Path);
  if (!target.FolderExists) fail(message::kNoBackupDevice(statement.Path, target.SystemError));
  if (catalogue_.IsDatabaseFile(target.File)) {
    fail(message::kNoBackupDevice(
        statement.Path,
        "32(The process cannot access the file because it is being used by "
        "another process.)"));
  }
  if (target.IsProtected) fail(message::kNoBackupDevice(statement.Path, SystemError(EACCES)));
  if (target.Exists && !statement.Overwrites) {
    fail(message::kOwn("a second backup is not added to a file; say WITH INIT"));
  }
  const auto start = std::chrono::steady_clock::now();
  // In a folder of its own, so that neither the copy nor the files that SQLite keeps next to it
  // meet an existing file.
  std::string folder = (target.File.parent_path() / "unfinished-backup-XXXXXX").string();
  if (mkdtemp(folder.data()) == nullptr) {
    fail(message::kNoBackupDevice(statement.Path, SystemError(errno)));
  }
  const fs::path unfinished = fs::path(folder) / "copy";
  const auto clean = [&folder] {
    std::error_code ignored;
    fs::remove_all(folder, ignored);
  };
  std::int64_t pages = 0;
  int told = 0;
  try {
    SqliteDatabase source(entry.File, entry.Name, isCancelled_);
    pages = source.CopyTo(unfinished, [&](int percent) {
      for (; statement.Stats > 0 && told + statement.Stats <= percent;) {
        told += statement.Stats;
        reply_->Tell(message::kPercentProcessed(told), 1);
      }
    });
    fs::rename(unfinished, target.File);
    clean();
  } catch (const Cancelled&) {
    clean();
    throw;
  } catch (const std::exception&) {
    clean();
    fail(message::kNoBackupDevice(statement.Path, "5(Access is denied.)"));
  }
  const auto took = std::chrono::duration_cast<std::chrono::milliseconds>(
      std::chrono::steady_clock::now() - start);
  reply_->Tell(message::kPagesProcessed(pages, entry.Name, entry.Name), 1);
  const double seconds = static_cast<double>(took.count()) / 1000;
  const double megabytes = static_cast<double>(pages) * 4096 / (1024 * 1024);
  const auto figure = [](double number) {
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%.3f", number);
    return std::string(text.data());
  };
  reply_->Tell(message::kBackupSucceeded(pages, figure(seconds),
                                         figure(seconds == 0 ? 0 : megabytes / seconds)),
               1);
  Done();
}

void Session::Do(const VerifyBackup& statement) {
  const FoundPath target = catalogue_.AllDrives().Find(statement.Path);
  if (!target.Exists) {
    throw SqlFailure(
        {message::kNoBackupDevice(statement.Path,
                                  target.FolderExists ? SystemError(ENOENT) : target.SystemError),
         message::kVerifyFailed()});
  }
  Done();
}

}  // namespace talu::standin
