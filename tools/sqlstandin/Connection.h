#pragma once

#include <atomic>
#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "Packets.h"
#include "Reply.h"
#include "Requests.h"
#include "Server.h"
#include "Session.h"

namespace talu::standin {

/// One client, from its first byte to its last. Whatever it sends, Serve raises nothing.
class Connection {
 public:
  Connection(ServerParts& parts, std::unique_ptr<Descriptor> socket);

  /// Reads and answers until the client leaves, violates the protocol, or End is called.
  void Serve();

  /// Ends the connection; may be called from any thread.
  void End();

 private:
  void WaitForLogin();
  bool ReceiveMore(bool waits);
  std::optional<Message> Receive();
  void Send(std::string_view packets);
  ReplyWriter NewReply();

  void Answer(Message& message);
  void AnswerLogin(const Message& message);
  void AnswerBatch(Message& message);
  void AnswerTransaction(const Message& message);
  void Refuse(const SqlFailure& failure, ReplyWriter& reply);
  bool IsCancelled();
  void Wait(std::chrono::milliseconds delay);

  ServerParts& parts_;
  std::unique_ptr<Descriptor> socket_;
  int number_;
  std::atomic<bool> isEnded_{false};
  MessageReader reader_;
  std::uint32_t version_ = 0;
  std::size_t packetSize_;
  std::unique_ptr<Session> session_;
  std::chrono::steady_clock::time_point loginEnd_;
};

}  // namespace talu::standin
