#include "Server.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <stdexcept>
#include <string>
#include <system_error>

#include "Connection.h"

namespace talu::standin {
namespace {

constexpr std::size_t kMostClients = 256;
/// How long clients wait for the next attempt when there is no descriptor for them: 0.1 s.
constexpr int kPauseMilliseconds = 100;

/// Prints a line for the person who runs the server, in one piece.
void Tell(const std::string& line) {
  std::fputs(("sqlstandin: " + line + "\n").c_str(), stderr);
}

void Check(bool isGood, const char* what) {
  if (!isGood) throw std::system_error(errno, std::generic_category(), what);
}

}  // namespace

Server::Server(ServerParts& parts, std::uint16_t port)
    : parts_(parts), listener_(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
  Check(listener_.Number() >= 0, "no socket");
  const int on = 1;
  setsockopt(listener_.Number(), SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  address.sin_port = htons(port);
  auto* plain = reinterpret_cast<sockaddr*>(&address);
  socklen_t size = sizeof address;
  Check(bind(listener_.Number(), plain, size) == 0, "the port cannot be used");
  Check(listen(listener_.Number(), SOMAXCONN) == 0, "the port cannot be used");
  Check(getsockname(listener_.Number(), plain, &size) == 0, "the port cannot be used");
  port_ = ntohs(address.sin_port);
}

Server::~Server() {
  Reap(true);
}

void Server::Run(int descriptor, const std::function<bool()>& goesOn) {
  std::array<pollfd, 3> waits = {{{descriptor, POLLIN, 0},
                                  {parts_.Log.FailureDescriptor(), POLLIN, 0},
                                  {listener_.Number(), POLLIN, 0}}};
  bool isShort = false;  // of descriptors: the listener stays ready, so it is not polled
  while (true) {
    const int count = poll(waits.data(), isShort ? 2 : 3, isShort ? kPauseMilliseconds : -1);
    if (count < 0) {
      if (errno == EINTR) continue;
      Check(false, "cannot wait for clients");
    }
    if (waits[1].revents != 0) break;
    if (waits[0].revents != 0) {
      if (!goesOn()) break;
      continue;
    }
    const bool wasShort = isShort;
    isShort = !Accept();
    if (isShort && !wasShort) {
      Tell("clients have to wait: " + std::generic_category().message(errno));
    }
  }
  Reap(true);
  parts_.Log.Check();
}

/// Accepts the next client. Returns false, with errno, when the machine lacks resources for one.
bool Server::Accept() {
  Reap(false);  // a client that has left still holds its descriptor
  const int number = accept4(listener_.Number(), nullptr, nullptr, SOCK_CLOEXEC);
  if (number < 0) {
    return errno != EMFILE && errno != ENFILE && errno != ENOBUFS && errno != ENOMEM;
  }
  try {
    Serve(std::make_unique<Descriptor>(number));
  } catch (const std::exception& error) {
    Tell(std::string("a client is turned away: ") + error.what());
  }
  return true;
}

void Server::Serve(std::unique_ptr<Descriptor> socket) {
  if (clients_.size() >= kMostClients) {
    throw std::runtime_error("there are " + std::to_string(kMostClients) + " already");
  }
  const int on = 1;
  setsockopt(socket->Number(), IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
  std::list<Client> clients(1);
  Client& client = clients.front();
  client.Link = std::make_unique<Connection>(parts_, std::move(socket));
  client.Thread = std::thread([&client] {
    client.Link->Serve();
    client.IsFinished = true;
  });
  clients_.splice(clients_.end(), clients);
}

void Server::Reap(bool all) {
  if (all) {
    for (Client& client : clients_) client.Link->End();
  }
  for (auto client = clients_.begin(); client != clients_.end();) {
    if (all || client->IsFinished) {
      client->Thread.join();
      client = clients_.erase(client);
    } else {
      ++client;
    }
  }
}

}  // namespace talu::standin
