#include "Packets.h"

#include <algorithm>
#include <utility>

namespace talu::standin {
namespace {

constexpr unsigned kStatusEndOfMessage = 0x01;
constexpr unsigned kStatusIgnore = 0x02;
constexpr unsigned kStatusReset = 0x08;
constexpr unsigned kStatusResetKeepTransaction = 0x10;

bool IsKnown(unsigned type) {
  switch (static_cast<MessageType>(type)) {
    case MessageType::Batch:
    case MessageType::Procedure:
    case MessageType::Attention:
    case MessageType::BulkLoad:
    case MessageType::Transaction:
    case MessageType::Login:
    case MessageType::SecuritySupport:
    case MessageType::PreLogin:
      return true;
    case MessageType::Reply:
      break;
  }
  return false;
}

}  // namespace

void MessageReader::Feed(std::string_view bytes) {
  while (!bytes.empty()) {
    std::size_t taken = 0;
    if (inBody_) {
      taken = std::min(bodyLeft_, bytes.size());
      message_.Payload.append(bytes.substr(0, taken));
      bodyLeft_ -= taken;
    } else {
      taken = std::min(kPacketHeaderSize - header_.size(), bytes.size());
      header_.append(bytes.substr(0, taken));
      if (header_.size() == kPacketHeaderSize) BeginPacket();
    }
    bytes.remove_prefix(taken);
    if (inBody_ && bodyLeft_ == 0) EndPacket();
  }
}

void MessageReader::BeginPacket() {
  const auto byte = [this](std::size_t at) { return static_cast<unsigned char>(header_[at]); };
  if (!IsKnown(byte(0))) throw ProtocolError("a packet of a type that no client sends");
  const auto type = static_cast<MessageType>(byte(0));
  const std::size_t length = (static_cast<std::size_t>(byte(2)) << 8) | byte(3);
  if (length < kPacketHeaderSize) throw ProtocolError("a packet shorter than its header");
  if (inMessage_ && type != message_.Type) {
    if (type != MessageType::Attention) throw ProtocolError("one message within another");
    inMessage_ = false;  // the client abandons the message that it was sending
  }
  if (!inMessage_) message_ = Message{type, false, {}};
  inMessage_ = true;
  if ((byte(1) & (kStatusReset | kStatusResetKeepTransaction)) != 0) message_.ResetsSession = true;
  bodyLeft_ = length - kPacketHeaderSize;
  if (message_.Payload.size() + bodyLeft_ > limit_) throw ProtocolError("a message too long");
  inBody_ = true;
}

void MessageReader::EndPacket() {
  const auto status = static_cast<unsigned char>(header_[1]);
  header_.clear();
  inBody_ = false;
  if ((status & kStatusEndOfMessage) == 0) return;
  inMessage_ = false;
  if ((status & kStatusIgnore) == 0) complete_.push_back(std::move(message_));
  message_ = Message{};
}

std::optional<Message> MessageReader::Next() {
  if (complete_.empty()) return std::nullopt;
  Message next = std::move(complete_.front());
  complete_.pop_front();
  return next;
}

bool MessageReader::HasAttention() const {
  return std::any_of(complete_.begin(), complete_.end(),
                     [](const Message& message) { return message.Type == MessageType::Attention; });
}

std::uint64_t ByteReader::Number(std::size_t size) {
  const std::string_view bytes = Take(size);
  std::uint64_t number = 0;
  for (std::size_t i = 0; i < size; ++i) {
    number |= static_cast<std::uint64_t>(static_cast<unsigned char>(bytes[i])) << (8 * i);
  }
  return number;
}

std::string_view ByteReader::Take(std::size_t size) {
  if (size > bytes_.size() - at_) throw ProtocolError("a message that ends too early");
  const std::string_view taken = bytes_.substr(at_, size);
  at_ += size;
  return taken;
}

}  // namespace talu::standin
