#include "Reply.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "Packets.h"
#include "Requests.h"
#include "Text.h"

namespace talu::standin {
namespace {

enum Token : std::uint8_t {
  TokenColumns = 0x81,
  TokenError = 0xAA,
  TokenInfo = 0xAB,
  TokenLoginAck = 0xAD,
  TokenRow = 0xD1,
  TokenChange = 0xE3,
  TokenDone = 0xFD,
};

enum Type : std::uint8_t {
  TypeImage = 0x22,
  TypeIntN = 0x26,
  TypeNText = 0x63,
  TypeFloatN = 0x6D,
  TypeVarBinary = 0xA5,
  TypeNVarChar = 0xE7,
};

constexpr unsigned kDoneMore = 0x01;
constexpr unsigned kDoneError = 0x02;
constexpr unsigned kDoneCount = 0x10;
constexpr unsigned kDoneAttention = 0x20;

/// Latin1_General, ignoring case: locale 1033, sort order 52.
constexpr std::string_view kCollation{"\x09\x04\xD0\x00\x34", 5};
constexpr std::string_view kServerName = "SQLSTANDIN";
/// The most characters of a message that the real server sends.
constexpr std::size_t kLongestMessage = 2047;
constexpr std::size_t kLongestColumnName = 128;
/// Bytes to collect before sending.
constexpr std::size_t kFlushSize = std::size_t{128} * 1024;

std::string Utf16(std::string_view utf8) {
  std::string bytes;
  AppendUtf16(bytes, utf8);
  return bytes;
}

}  // namespace

bool ReplyWriter::HasLongTypes() const {
  return version_ >= kTdsVersion72;
}

void ReplyWriter::Number(std::uint64_t value, std::size_t size) {
  for (std::size_t i = 0; i < size; ++i) {
    body_.push_back(static_cast<char>(value & 0xFF));
    value >>= 8;
  }
}

void ReplyWriter::ShortText(std::string_view utf8) {
  const std::string bytes = Utf16(FirstUnits(utf8, 255));
  Number(bytes.size() / 2, 1);
  body_ += bytes;
}

void ReplyWriter::BeginToken() {
  if (pending_) PutDone(pending_->Status | kDoneMore);
  Flush(false);
}

void ReplyWriter::LoginAccepted() {
  BeginToken();
  const std::string name = Utf16("sqlstandin");
  Number(TokenLoginAck, 1);
  Number(1 + 4 + 1 + name.size() + 4, 2);
  Number(1, 1);  // the SQL dialect
  for (int shift = 24; shift >= 0; shift -= 8) Number(version_ >> shift, 1);
  Number(name.size() / 2, 1);
  body_ += name;
  for (const unsigned part : {10U, 50U, 0x06U, 0x40U}) Number(part, 1);
}

void ReplyWriter::Change(ChangeType type, std::string_view newValue, std::string_view oldValue) {
  BeginToken();
  const bool isText = type <= ChangeType::PacketSize;
  const std::string newBytes = isText ? Utf16(newValue) : std::string(newValue);
  const std::string oldBytes = isText ? Utf16(oldValue) : std::string(oldValue);
  Number(TokenChange, 1);
  Number(1 + 1 + newBytes.size() + 1 + oldBytes.size(), 2);
  Number(static_cast<std::uint8_t>(type), 1);
  Number(isText ? newBytes.size() / 2 : newBytes.size(), 1);
  body_ += newBytes;
  Number(isText ? oldBytes.size() / 2 : oldBytes.size(), 1);
  body_ += oldBytes;
}

void ReplyWriter::CollationChanged() {
  Change(ChangeType::Collation, kCollation, "");
}

void ReplyWriter::TransactionBegan(std::uint64_t transaction) {
  if (!HasLongTypes()) return;  // older clients know no transaction numbers
  Change(ChangeType::Begin, {reinterpret_cast<const char*>(&transaction), sizeof transaction}, "");
}

void ReplyWriter::TransactionEnded(std::uint64_t transaction, bool committed) {
  if (!HasLongTypes()) return;
  Change(committed ? ChangeType::Commit : ChangeType::Rollback, "",
         {reinterpret_cast<const char*>(&transaction), sizeof transaction});
}

void ReplyWriter::Tell(const SqlMessage& message, std::size_t line) {
  BeginToken();
  const std::string text = Utf16(FirstUnits(message.Text, kLongestMessage));
  const std::string server = Utf16(kServerName);
  const std::size_t lineSize = HasLongTypes() ? 4 : 2;
  Number(message.Severity > 10 ? TokenError : TokenInfo, 1);
  Number(4 + 1 + 1 + 2 + text.size() + 1 + server.size() + 1 + lineSize, 2);
  Number(static_cast<std::uint32_t>(message.Number), 4);
  Number(message.State, 1);
  Number(message.Severity, 1);
  Number(text.size() / 2, 2);
  body_ += text;
  ShortText(kServerName);
  ShortText("");  // no procedure
  Number(line, lineSize);
}

void ReplyWriter::Collation() {
  if (version_ >= kTdsVersion71) body_ += kCollation;
}

void ReplyWriter::Columns(const std::vector<ResultColumn>& columns) {
  BeginToken();
  Number(TokenColumns, 1);
  Number(columns.size(), 2);
  for (const ResultColumn& column : columns) {
    Number(0, HasLongTypes() ? 4 : 2);  // no user type
    Number(1, 2);                       // may be null
    switch (column.Type) {
      case ValueType::Int:
      case ValueType::BigInt:
        Number(TypeIntN, 1);
        Number(column.Type == ValueType::Int ? 4 : 8, 1);
        break;
      case ValueType::Float:
        Number(TypeFloatN, 1);
        Number(8, 1);
        break;
      case ValueType::Text:
        if (column.Length == 0 && !HasLongTypes()) {
          Number(TypeNText, 1);
          Number(0x7FFFFFFE, 4);
          Collation();
          Number(0, 2);  // of no table
        } else {
          Number(TypeNVarChar, 1);
          Number(column.Length == 0 ? 0xFFFF : column.Length * 2, 2);
          Collation();
        }
        break;
      case ValueType::Bytes:
        if (HasLongTypes()) {
          Number(TypeVarBinary, 1);
          Number(0xFFFF, 2);
        } else {
          Number(TypeImage, 1);
          Number(0x7FFFFFFF, 4);
          Number(0, 2);
        }
        break;
    }
    ShortText(FirstUnits(column.Name, kLongestColumnName));
  }
}

void ReplyWriter::BeginRow() {
  BeginToken();
  Number(TokenRow, 1);
}

void ReplyWriter::Null(const ResultColumn& column) {
  if (column.Type == ValueType::Text && column.Length != 0) {
    Number(0xFFFF, 2);
  } else if ((column.Type == ValueType::Text || column.Type == ValueType::Bytes) &&
             HasLongTypes()) {
    Number(~std::uint64_t{0}, 8);
  } else {
    Number(0, 1);
  }
}

void ReplyWriter::Int(const ResultColumn& column, std::int64_t value) {
  const std::size_t size = column.Type == ValueType::Int ? 4 : 8;
  Number(size, 1);
  Number(static_cast<std::uint64_t>(value), size);
}

void ReplyWriter::Float(double value) {
  Number(8, 1);
  Number(std::bit_cast<std::uint64_t>(value), 8);
}

void ReplyWriter::Text(const ResultColumn& column, std::string_view utf8) {
  scratch_.clear();
  AppendUtf16(scratch_, utf8);
  if (column.Length == 0) {
    LongValue(scratch_);
  } else {
    scratch_.resize(std::min(scratch_.size(), column.Length * 2));
    Number(scratch_.size(), 2);
    body_ += scratch_;
  }
}

void ReplyWriter::Bytes(std::string_view bytes) {
  LongValue(bytes);
}

void ReplyWriter::LongValue(std::string_view bytes) {
  if (HasLongTypes()) {
    Number(bytes.size(), 8);
    if (!bytes.empty()) {
      Number(bytes.size(), 4);
      body_ += bytes;
    }
    Number(0, 4);
  } else {
    Number(16, 1);  // a text pointer and a time stamp, which clients only hand back
    body_.append(16 + 8, '\x01');
    Number(bytes.size(), 4);
    body_ += bytes;
  }
}

void ReplyWriter::Done(DoneCommand command, std::optional<std::uint64_t> rows, bool failed) {
  BeginToken();
  pending_ = {(rows ? kDoneCount : 0) | (failed ? kDoneError : 0), command, rows.value_or(0)};
}

void ReplyWriter::DoneAttention() {
  BeginToken();
  pending_ = {kDoneAttention, DoneCommand::None, 0};
}

void ReplyWriter::PutDone(unsigned status) {
  const PendingDone done = *pending_;
  pending_.reset();
  Number(TokenDone, 1);
  Number(status, 2);
  Number(static_cast<std::uint16_t>(done.Command), 2);
  Number(done.Rows, HasLongTypes() ? 8 : 4);
}

void ReplyWriter::Finish() {
  if (pending_) PutDone(pending_->Status);
  Flush(true);
}

void ReplyWriter::Flush(bool last) {
  if (!last && body_.size() < kFlushSize) return;
  const std::size_t room = packetSize_ - kPacketHeaderSize;
  std::size_t sent = 0;
  std::string packets;
  while (body_.size() - sent > room || (last && sent < body_.size())) {
    const std::size_t size = std::min(room, body_.size() - sent);
    const bool final = last && sent + size == body_.size();
    const std::size_t total = size + kPacketHeaderSize;
    packets.push_back(static_cast<char>(MessageType::Reply));
    packets.push_back(final ? '\x01' : '\x00');
    packets.push_back(static_cast<char>(total >> 8));
    packets.push_back(static_cast<char>(total & 0xFF));
    packets.append(2, '\0');
    packets.push_back(static_cast<char>(packetNumber_++));
    packets.push_back('\0');
    packets.append(body_, sent, size);
    sent += size;
  }
  body_.erase(0, sent);
  sink_(packets);
}

}  // namespace talu::standin
