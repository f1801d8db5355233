#include "Connection.h"

#include <poll.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <cerrno>

#include "Text.h"

namespace talu::standin {
namespace {

constexpr std::size_t kFirstPacketSize = 4096;
constexpr std::size_t kSmallestPacketSize = 512;
constexpr std::size_t kLargestPacketSize = 32767;
/// Bytes of a message before the login, and after it: a batch of 500 million characters.
constexpr std::size_t kLoginLimit = std::size_t{128} * 1024;
constexpr std::size_t kBatchLimit = std::size_t{1000} * 1000 * 1000;
constexpr std::size_t kReceiveSize = std::size_t{64} * 1024;
constexpr std::string_view kLanguage = "us_english";

/// The client has gone, or refuses to receive more.
class Gone : public std::exception {};

}  // namespace

Connection::Connection(ServerParts& parts, std::unique_ptr<Descriptor> socket)
    : parts_(parts),
      socket_(std::move(socket)),
      number_(parts.NextSession++),
      reader_(kLoginLimit),
      packetSize_(kFirstPacketSize),
      loginEnd_(std::chrono::steady_clock::now() + parts.LoginTime) {}

void Connection::End() {
  isEnded_ = true;
  shutdown(socket_->Number(), SHUT_RDWR);
}

void Connection::Serve() {
  try {
    parts_.Server.Join(number_, [this] { End(); });
    while (auto message = Receive()) Answer(*message);
  } catch (const std::exception&) {
    // The client is gone, the protocol broken, or memory exhausted: each ends this connection.
  }
  const bool wasLoggedIn = session_ != nullptr;
  session_.reset();
  parts_.Server.Leave(number_);
  try {
    if (wasLoggedIn) parts_.Log.LoggedOut(number_);
  } catch (const std::exception&) {
    // The server itself stops with the journal's error.
  }
  shutdown(socket_->Number(), SHUT_RDWR);
}

/// Reads what has arrived. Returns false at the end of the connection or, without waiting, when
/// there is nothing.
bool Connection::ReceiveMore(bool waits) {
  std::array<char, kReceiveSize> bytes;
  const ssize_t size =
      recv(socket_->Number(), bytes.data(), bytes.size(), waits ? 0 : MSG_DONTWAIT);
  if (size > 0) {
    reader_.Feed({bytes.data(), static_cast<std::size_t>(size)});
    return true;
  }
  if (size < 0 && errno == EINTR) return true;
  if (!waits && size < 0 && (errno == EAGAIN || errno == EWOULDBLOCK)) return false;
  isEnded_ = true;
  return false;
}

/// Waits for the next bytes of a client that has not logged in yet. Its time limit never starts
/// again.
void Connection::WaitForLogin() {
  pollfd wait{socket_->Number(), POLLIN, 0};
  const auto left =
      std::chrono::ceil<std::chrono::milliseconds>(loginEnd_ - std::chrono::steady_clock::now());
  if (left.count() <= 0 || poll(&wait, 1, static_cast<int>(left.count())) == 0) throw Gone();
}

std::optional<Message> Connection::Receive() {
  while (!isEnded_) {
    if (auto message = reader_.Next()) return message;
    if (!session_) WaitForLogin();
    ReceiveMore(true);
  }
  return std::nullopt;
}

void Connection::Send(std::string_view packets) {
  while (!packets.empty()) {
    const ssize_t size = send(socket_->Number(), packets.data(), packets.size(), MSG_NOSIGNAL);
    if (size < 0 && errno == EINTR) continue;
    if (size <= 0) throw Gone();
    packets.remove_prefix(static_cast<std::size_t>(size));
  }
}

ReplyWriter Connection::NewReply() {
  return {[this](std::string_view packets) { Send(packets); }, version_, packetSize_};
}

/// Whether to stop what runs: the client has cancelled it or gone, or the server ends.
bool Connection::IsCancelled() {
  if (!reader_.HasMessage()) ReceiveMore(false);
  return isEnded_ || reader_.HasAttention();
}

void Connection::Wait(std::chrono::milliseconds delay) {
  const auto end = std::chrono::steady_clock::now() + delay;
  while (true) {
    if (IsCancelled()) throw Cancelled();
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
        end - std::chrono::steady_clock::now());
    if (left.count() <= 0) return;
    pollfd wait{socket_->Number(), POLLIN, 0};
    const auto slice = std::min<std::chrono::milliseconds::rep>(left.count(), 100);
    if (reader_.HasMessage()) wait.fd = -1;  // a waiting message keeps the socket ready
    poll(&wait, 1, static_cast<int>(slice));
  }
}

void Connection::Answer(Message& message) {
  if (!session_) {
    if (message.Type == MessageType::PreLogin) {
      ReplyWriter reply = NewReply();
      reply.Raw(AnswerPreLogin(message.Payload));
      reply.Finish();
    } else if (message.Type == MessageType::Login) {
      AnswerLogin(message);
    } else {
      throw ProtocolError("a message before the login");
    }
    return;
  }
  if (message.ResetsSession) session_->Reset();
  switch (message.Type) {
    case MessageType::Batch:
      AnswerBatch(message);
      break;
    case MessageType::Transaction:
      AnswerTransaction(message);
      break;
    case MessageType::Attention: {
      ReplyWriter reply = NewReply();
      reply.DoneAttention();
      reply.Finish();
      break;
    }
    case MessageType::Procedure: {
      ReplyWriter reply = NewReply();
      Refuse(SqlFailure(message::kNoSuchProcedure(ParseProcedureName(message.Payload, version_))),
             reply);
      break;
    }
    case MessageType::BulkLoad: {
      ReplyWriter reply = NewReply();
      Refuse(SqlFailure(message::kOwn("bulk load is not supported")), reply);
      break;
    }
    default:
      throw ProtocolError("a message out of its turn");
  }
}

void Connection::Refuse(const SqlFailure& failure, ReplyWriter& reply) {
  for (const SqlMessage& each : failure.Messages) reply.Tell(each, 1);
  reply.Done(DoneCommand::None, {}, true);
  reply.Finish();
}

void Connection::AnswerLogin(const Message& message) {
  const LoginRequest login = ParseLogin(message.Payload);
  version_ = std::min(login.Version, kTdsVersion74);
  if (version_ < kTdsVersion70) throw ProtocolError("a version too old");
  const std::string database = login.Database.empty() ? std::string(kMasterName) : login.Database;
  ReplyWriter reply = NewReply();
  try {
    if (login.Integrated) throw SqlFailure(message::kUntrustedLogin());
    if (!parts_.Server.MayLogIn(login.User, login.Password)) {
      throw SqlFailure(message::kLoginFailed(login.User));
    }
    try {
      session_ = std::make_unique<Session>(
          parts_.Server, number_, login.User, database, [this] { return IsCancelled(); },
          parts_.IsStrict);
    } catch (const SqlFailure&) {
      throw SqlFailure({message::kCannotOpenDatabase(database), message::kLoginFailed(login.User)});
    }
  } catch (const SqlFailure& failure) {
    parts_.Log.LoggedIn(number_, login.User, database, failure.Messages.front());
    Refuse(failure, reply);
    throw Gone();
  }
  parts_.Log.LoggedIn(number_, login.User, database, {});
  const std::string& name = session_->DatabaseName();
  const std::size_t wanted = login.PacketSize == 0 ? kFirstPacketSize : login.PacketSize;
  const std::size_t agreed = std::clamp(wanted, kSmallestPacketSize, kLargestPacketSize);
  reply.DatabaseChanged(name, kMasterName);
  SqlMessage context = message::kDatabaseContext(name);
  context.State = 2;
  reply.Tell(context, 1);
  reply.CollationChanged();
  reply.LanguageChanged(kLanguage);
  reply.Tell(message::kLanguageSetting(kLanguage), 1);
  reply.LoginAccepted();
  reply.PacketSizeChanged(agreed, kFirstPacketSize);
  reply.Done(DoneCommand::None, {});
  reply.Finish();
  packetSize_ = agreed;
  reader_.SetLimit(kBatchLimit);
}

void Connection::AnswerBatch(Message& message) {
  const std::string batch = ParseBatch(message.Payload, version_);
  std::string().swap(message.Payload);  // a batch may be as large as what is left of the memory
  const std::uint64_t number = ++parts_.Batches;
  const std::string database = session_->DatabaseName();
  const Mishap mishap = parts_.Plan.For(number, batch);
  ReplyWriter reply = NewReply();
  if (message.ResetsSession) reply.SessionReset();
  Outcome outcome;
  try {
    if (mishap.Delay.count() > 0) Wait(mishap.Delay);
    if (mishap.Cuts) {
      outcome.Ending = "cut";
    } else if (mishap.Failure) {
      outcome.Error = mishap.Failure;
    } else {
      outcome = session_->Run(batch, reply);
    }
  } catch (const Cancelled&) {
    outcome.Ending = "cancelled";
  }
  // The record is written before the client gets the end of the answer.
  parts_.Log.Batch(number, number_, database, batch, outcome);
  parts_.Account.Add(number, database, batch, outcome);
  if (mishap.Cuts) throw Gone();
  if (!outcome.Ending.empty()) {
    if (isEnded_) throw Gone();
    while (reader_.HasMessage()) {
      const auto next = reader_.Next();
      if (next->Type == MessageType::Attention) break;
    }
    reply.DoneAttention();
    reply.Finish();
  } else if (mishap.Failure) {
    Refuse(SqlFailure(*mishap.Failure), reply);
  } else {
    reply.Finish();
  }
}

void Connection::AnswerTransaction(const Message& message) {
  using Kind = TransactionRequest::Kind;
  const TransactionRequest request = ParseTransaction(message.Payload, version_);
  ReplyWriter reply = NewReply();
  try {
    if (request.What == Kind::Other) {
      throw SqlFailure(message::kOwn("this transaction request is not supported"));
    }
    if (request.What == Kind::Begin) {
      session_->BeginTransaction(reply);
    } else {
      session_->EndTransaction(reply, request.What == Kind::Commit);
      if (request.BeginsAnother) session_->BeginTransaction(reply);
    }
    reply.Done(DoneCommand::None, {});
    reply.Finish();
  } catch (const SqlFailure& failure) {
    Refuse(failure, reply);
  }
}

}  // namespace talu::standin
