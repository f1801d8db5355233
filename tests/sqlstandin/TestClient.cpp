#include "TestClient.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <bit>
#include <sstream>
#include <stdexcept>

#include "Text.h"

namespace talu::standin {
namespace {

void Put(std::string& bytes, std::uint64_t value, std::size_t size) {
  for (std::size_t i = 0; i < size; ++i) bytes.push_back(static_cast<char>(value >> (8 * i)));
}

std::string Utf16(std::string_view utf8) {
  std::string bytes;
  AppendUtf16(bytes, utf8);
  return bytes;
}

struct WireColumn {
  std::uint64_t Type;
  bool IsLong;
};

std::string TakeValue(ByteReader& body, const WireColumn& column) {
  std::string bytes;
  if (column.IsLong) {
    if (body.Number(8) == ~std::uint64_t{0}) return "NULL";
    while (const std::uint64_t size = body.Number(4)) bytes += body.Take(size);
  } else if (column.Type == 0xE7) {
    const std::uint64_t size = body.Number(2);
    if (size == 0xFFFF) return "NULL";
    bytes = body.Take(size);
  } else if (column.Type == 0x63) {
    const std::uint64_t pointer = body.Number(1);
    if (pointer == 0) return "NULL";
    body.Take(pointer + 8);
    bytes = body.Take(body.Number(4));
  } else {
    const std::uint64_t size = body.Number(1);
    if (size == 0) return "NULL";
    const std::uint64_t number = body.Number(size);
    std::ostringstream text;
    if (column.Type == 0x6D) {
      text << std::bit_cast<double>(number);
    } else {
      text << (size == 4 ? static_cast<std::int32_t>(number) : static_cast<std::int64_t>(number));
    }
    return text.str();
  }
  return column.Type == 0xA5 ? bytes : Utf8FromUtf16(bytes);
}

}  // namespace

std::string Answer::Summary() const {
  std::string text;
  const auto add = [&text](const std::string& part) {
    if (!text.empty()) text += ';';
    text += part;
  };
  for (const auto& row : Rows) {
    std::string line;
    for (const auto& value : row) line.append(line.empty() ? "" : ",").append(value);
    add(line);
  }
  for (const SqlMessage& each : Messages) {
    if (each.Severity > 10) add(std::string("!").append(std::to_string(each.Number)));
    if (each.Number == 0) add("i0:" + each.Text);
  }
  return text;
}

TestClient::TestClient(std::uint16_t port)
    : socket_(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  address.sin_port = htons(port);
  if (connect(socket_, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0) {
    throw std::runtime_error("cannot connect");
  }
  const int on = 1;
  setsockopt(socket_, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
  const timeval patience{60, 0};
  setsockopt(socket_, SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
}

TestClient::~TestClient() {
  close(socket_);
}

bool TestClient::SendBytes(std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t size = send(socket_, bytes.data(), bytes.size(), MSG_NOSIGNAL);
    if (size <= 0) return false;  // what it did shows in Receive
    bytes.remove_prefix(static_cast<std::size_t>(size));
  }
  return true;
}

void TestClient::SendMessage(MessageType type, std::string_view payload, std::size_t packetSize) {
  std::string packets;
  std::size_t at = 0;
  do {
    const std::size_t size = std::min(payload.size() - at, packetSize - kPacketHeaderSize);
    const bool isLast = at + size == payload.size();
    const std::size_t total = size + kPacketHeaderSize;
    for (const std::size_t byte :
         {static_cast<std::size_t>(type), std::size_t{isLast ? 1U : 0U}, total >> 8, total & 0xFF,
          std::size_t{0}, std::size_t{0}, std::size_t{1}, std::size_t{0}}) {
      packets.push_back(static_cast<char>(byte));
    }
    packets += payload.substr(at, size);
    at += size;
  } while (at < payload.size());
  SendBytes(packets);
}

std::string LoginPayload(const std::string& user, const std::string& password,
                         const std::string& database, std::uint32_t version) {
  std::string secret = Utf16(password);
  for (char& byte : secret) {
    const auto plain = static_cast<unsigned char>(byte);
    byte = static_cast<char>((((plain << 4) | (plain >> 4)) & 0xFF) ^ 0xA5);
  }
  const std::array<std::string, 9> fields = {
      Utf16("host"), Utf16(user), secret,         Utf16("test"), Utf16("server"), "",
      Utf16("lib"),  "",          Utf16(database)};
  std::string directory;
  std::string data;
  constexpr std::size_t kHeadSize = 94;
  for (const std::string& field : fields) {
    Put(directory, kHeadSize + data.size(), 2);
    Put(directory, field.size() / 2, 2);
    data += field;
  }
  std::string payload;
  Put(payload, kHeadSize + data.size(), 4);
  Put(payload, version, 4);
  Put(payload, 4096, 4);
  payload.append(24, '\0');
  payload += directory;
  payload.append(kHeadSize - payload.size(), '\0');
  return payload + data;
}

Answer TestClient::LogIn(const std::string& user, const std::string& password,
                         const std::string& database, std::uint32_t version) {
  version_ = version;
  SendMessage(MessageType::Login, LoginPayload(user, password, database, version));
  return Receive();
}

void TestClient::SendBatch(std::string_view utf8) {
  std::string payload;
  if (version_ >= kTdsVersion72) {
    Put(payload, 22, 4);
    Put(payload, 18, 4);
    Put(payload, 2, 2);
    Put(payload, 0, 8);
    Put(payload, 1, 4);
  }
  AppendUtf16(payload, utf8);
  SendMessage(MessageType::Batch, payload);
}

Answer TestClient::Batch(std::string_view utf8) {
  SendBatch(utf8);
  return Receive();
}

std::string TestClient::ReceiveBody() {
  std::string body;
  const auto take = [this](std::size_t size) {
    std::string bytes(size, '\0');
    const ssize_t got = recv(socket_, bytes.data(), size, MSG_WAITALL);
    isClosed_ = got != static_cast<ssize_t>(size);
    return bytes;
  };
  while (!isClosed_) {
    const std::string header = take(kPacketHeaderSize);
    if (isClosed_) break;
    const std::size_t length =
        (static_cast<std::size_t>(static_cast<unsigned char>(header[2])) << 8) |
        static_cast<unsigned char>(header[3]);
    body += take(length - kPacketHeaderSize);
    if (header[1] == 1) break;
  }
  return body;
}

Answer TestClient::Receive() {
  Answer answer;
  const std::string bytes = ReceiveBody();
  answer.IsClosed = isClosed_;
  if (isClosed_) return answer;
  ByteReader body(bytes);
  std::vector<WireColumn> columns;
  const bool isNew = version_ >= kTdsVersion72;
  const bool hasCollation = version_ >= kTdsVersion71;
  const auto shortText = [&body] { return Utf8FromUtf16(body.Take(body.Number(1) * 2)); };
  while (!body.Rest().empty()) {
    switch (body.Number(1)) {
      case 0x81: {
        columns.clear();
        answer.Columns.clear();
        for (std::uint64_t left = body.Number(2); left > 0; --left) {
          body.Take(isNew ? 6 : 4);
          WireColumn column{body.Number(1), false};
          if (column.Type == 0xE7 || column.Type == 0xA5) {
            column.IsLong = body.Number(2) == 0xFFFF;
            if (column.Type == 0xE7 && hasCollation) body.Take(5);
          } else if (column.Type == 0x63) {
            body.Take(hasCollation ? 9 : 4);
            body.Take(body.Number(2) * 2);
          } else {
            body.Take(1);
          }
          columns.push_back(column);
          answer.Columns.push_back(shortText());
        }
        break;
      }
      case 0xD1: {
        std::vector<std::string> row;
        row.reserve(columns.size());
        for (const WireColumn& column : columns) row.push_back(TakeValue(body, column));
        answer.Rows.push_back(std::move(row));
        break;
      }
      case 0xAA:
      case 0xAB: {
        body.Take(2);
        SqlMessage each;
        each.Number = static_cast<std::int32_t>(body.Number(4));
        each.State = static_cast<std::uint8_t>(body.Number(1));
        each.Severity = static_cast<std::uint8_t>(body.Number(1));
        each.Text = Utf8FromUtf16(body.Take(body.Number(2) * 2));
        shortText();
        shortText();
        body.Take(isNew ? 4 : 2);
        answer.Messages.push_back(std::move(each));
        break;
      }
      case 0xE3: {
        ByteReader change(body.Take(body.Number(2)));
        if (change.Number(1) == 1)
          answer.Database = Utf8FromUtf16(change.Take(change.Number(1) * 2));
        break;
      }
      case 0xAD:
        body.Take(body.Number(2));
        break;
      case 0xFD: {
        const std::uint64_t status = body.Number(2);
        body.Take(2);
        const std::uint64_t count = body.Number(isNew ? 8 : 4);
        if ((status & 0x10) != 0) answer.Counts.push_back(count);
        answer.IsAttention = answer.IsAttention || (status & 0x20) != 0;
        break;
      }
      default:
        throw std::runtime_error("an unknown token in the answer");
    }
  }
  return answer;
}

}  // namespace talu::standin
