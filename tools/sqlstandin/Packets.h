#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

/// The framing of the wire protocol (TDS 7.x). The numbers here and in Requests and Reply are from
/// the public protocol description MS-TDS, "Tabular Data Stream Protocol".
namespace talu::standin {

/// The client violated the protocol; its connection is closed.
class ProtocolError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

enum class MessageType : std::uint8_t {
  Batch = 1,
  Procedure = 3,
  Reply = 4,
  Attention = 6,
  BulkLoad = 7,
  Transaction = 14,
  Login = 16,
  SecuritySupport = 17,
  PreLogin = 18,
};

inline constexpr std::size_t kPacketHeaderSize = 8;

/// A whole message: the payloads of its packets, joined.
struct Message {
  MessageType Type{};
  /// The client wants a session as good as new before this message is executed.
  bool ResetsSession = false;
  std::string Payload;
};

/// Assembles messages from the bytes of a connection, however they arrive. It touches nothing
/// outside itself, and keeps at most one message in memory, of up to `limit` bytes.
class MessageReader {
 public:
  explicit MessageReader(std::size_t limit) : limit_(limit) {}

  /// Adds the next bytes. Raises ProtocolError for a malformed packet or a message over the limit.
  void Feed(std::string_view bytes);

  /// The oldest complete message, or nothing when more bytes are needed.
  std::optional<Message> Next();

  /// Whether Next would return a message.
  bool HasMessage() const { return !complete_.empty(); }
  /// Whether the client has cancelled what is running.
  bool HasAttention() const;

  /// The maximum size of a message in bytes from now on.
  void SetLimit(std::size_t limit) { limit_ = limit; }

 private:
  void BeginPacket();
  void EndPacket();

  std::size_t limit_;
  std::string header_;
  std::size_t bodyLeft_ = 0;
  bool inBody_ = false;
  bool inMessage_ = false;
  Message message_;
  std::deque<Message> complete_;
};

/// Reads numbers and texts from a payload; reading past its end raises ProtocolError.
class ByteReader {
 public:
  explicit ByteReader(std::string_view bytes) : bytes_(bytes) {}

  /// `size` bytes (1 to 8) as an unsigned number, little-endian.
  std::uint64_t Number(std::size_t size);
  std::string_view Take(std::size_t size);
  std::string_view Rest() const { return bytes_.substr(at_); }

 private:
  std::string_view bytes_;
  std::size_t at_ = 0;
};

}  // namespace talu::standin
