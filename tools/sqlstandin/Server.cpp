#include "Server.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <system_error>

#include "Connection.h"

namespace talu::standin {
namespace {

constexpr std::size_t mostClients = 256;

void Check(bool isGood, const char* what) {
  if (!isGood) throw std::system_error(errno, std::generic_category(), what);
}

}  // namespace

Descriptor::~Descriptor() {
  if (number_ >= 0) close(number_);
}

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

void Server::Run(int stopDescriptor) {
  std::array<pollfd, 2> waits = {{{listener_.Number(), POLLIN, 0}, {stopDescriptor, POLLIN, 0}}};
  while (true) {
    if (poll(waits.data(), waits.size(), -1) < 0) {
      if (errno == EINTR) continue;
      Check(false, "cannot wait for clients");
    }
    if (waits[1].revents != 0) break;
    if (waits[0].revents != 0) Accept();
  }
  Reap(true);
}

void Server::Accept() {
  const int number = accept4(listener_.Number(), nullptr, nullptr, SOCK_CLOEXEC);
  if (number < 0) return;  // the client has gone already
  auto socket = std::make_unique<Descriptor>(number);
  Reap(false);
  if (clients_.size() >= mostClients) return;
  const int on = 1;
  setsockopt(number, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
  Client& client = clients_.emplace_back();
  client.Link = std::make_unique<Connection>(parts_, std::move(socket));
  client.Thread = std::thread([&client] {
    client.Link->Serve();
    client.IsFinished = true;
  });
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
