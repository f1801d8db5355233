#pragma once

#include <sys/eventfd.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <string>
#include <thread>
#include <vector>

#include "Catalogue.h"
#include "HostFolder.h"
#include "Journal.h"
#include "Mishaps.h"
#include "Server.h"
#include "TestClient.h"

namespace talu::standin {

inline const std::string kTestPassword = "Secret 1";

/// A server within the test's process: drive C: is the folder "c" and has the folder "Data".
class RunningServer {
 public:
  explicit RunningServer(const std::filesystem::path& folder, Mishaps mishaps = {},
                         std::chrono::milliseconds loginTime = ServerParts::kUsualLoginTime,
                         bool isStrict = true)
      : drive_(Prepare(folder)),
        journalFile_(folder / "journal"),
        mishaps_(std::move(mishaps)),
        catalogue_(folder / "state", Mapped(drive_), "sa", kTestPassword),
        journal_(journalFile_),
        parts_{catalogue_, journal_, mishaps_, loginTime, isStrict},
        server_(parts_, 0),
        thread_([this] { server_.Run(stop_.Number(), [] { return false; }); }) {}

  ~RunningServer() {
    const std::uint64_t one = 1;
    [[maybe_unused]] const ssize_t written = write(stop_.Number(), &one, sizeof one);
    thread_.join();
  }
  RunningServer(const RunningServer&) = delete;
  RunningServer& operator=(const RunningServer&) = delete;

  std::uint16_t Port() const { return server_.Port(); }
  /// The folder behind C:\Data.
  std::filesystem::path Data() const { return drive_ / "Data"; }

  std::vector<nlohmann::json> Journal() const {
    std::vector<nlohmann::json> records;
    std::ifstream file(journalFile_);
    for (std::string line; std::getline(file, line);)
      records.push_back(nlohmann::json::parse(line));
    return records;
  }

  nlohmann::json Report() const {
    const std::filesystem::path file = journalFile_.string() + ".report";
    parts_.Account.Write(file, catalogue_, parts_.IsStrict);
    return nlohmann::json::parse(std::ifstream(file));
  }

 private:
  static std::filesystem::path Prepare(const std::filesystem::path& folder) {
    for (const char* name : {"Data", "Program Files"}) {
      std::filesystem::create_directories(folder / "c" / name);
    }
    return folder / "c";
  }
  static Drives Mapped(const std::filesystem::path& folder) {
    Drives drives;
    drives.Add("C=" + folder.string());
    drives.Protect("C:\\Program Files");
    return drives;
  }

  std::filesystem::path drive_;
  std::filesystem::path journalFile_;
  Mishaps mishaps_;
  Catalogue catalogue_;
  standin::Journal journal_;
  ServerParts parts_;
  Descriptor stop_{eventfd(0, EFD_CLOEXEC)};
  Server server_;
  std::thread thread_;
};

/// A client that is logged in as the administrator.
class LoggedIn : public TestClient {
 public:
  explicit LoggedIn(const RunningServer& server, const std::string& database = "")
      : TestClient(server.Port()) {
    LogIn("sa", kTestPassword, database);
  }
};

}  // namespace talu::standin
