#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <list>
#include <memory>
#include <thread>

#include "Catalogue.h"
#include "Descriptor.h"
#include "Journal.h"
#include "Mishaps.h"
#include "Report.h"

namespace talu::standin {

/// What all connections share.
struct ServerParts {
  Catalogue& Server;
  Journal& Log;
  const Mishaps& Plan;
  /// How long a client may take to log in.
  static constexpr std::chrono::milliseconds kUsualLoginTime{30000};
  std::chrono::milliseconds LoginTime = kUsualLoginTime;
  /// Refuses what is otherwise taken note of.
  bool IsStrict = false;
  Report Account{};
  /// Batches received, over all sessions.
  std::atomic<std::uint64_t> Batches{0};
  /// The real server's first session for a client is 51.
  std::atomic<int> NextSession{51};
};

class Connection;

/// Listens on the loopback interface only, with one thread per client.
class Server {
 public:
  /// Port 0 chooses a free one. Raises std::system_error when the port is taken.
  Server(ServerParts& parts, std::uint16_t port);
  ~Server();

  std::uint16_t Port() const { return port_; }

  /// Serves; whenever `descriptor` is readable asks `goesOn`, and on its no closes every
  /// connection. Raises std::runtime_error, also after closing them, when the journal cannot be
  /// written.
  void Run(int descriptor, const std::function<bool()>& goesOn);

 private:
  struct Client {
    std::unique_ptr<Connection> Link;
    std::thread Thread;
    std::atomic<bool> IsFinished{false};
  };
  bool Accept();
  void Serve(std::unique_ptr<Descriptor> socket);
  void Reap(bool all);

  ServerParts& parts_;
  Descriptor listener_;
  std::uint16_t port_ = 0;
  std::list<Client> clients_;
};

}  // namespace talu::standin
