#include "Requests.h"

#include <array>

#include "Text.h"
#include "runtime/TextFunctions.h"

namespace talu::standin {
namespace {

/// Characters per login field: the protocol's own limit.
constexpr std::size_t kLongestLoginField = 128;

std::string LoginField(std::string_view payload, std::size_t directoryAt, bool isPassword = false) {
  ByteReader directory(payload);
  directory.Take(directoryAt);
  const std::size_t offset = directory.Number(2);
  const std::size_t length = directory.Number(2);
  if (length == 0) return {};
  if (length > kLongestLoginField) throw ProtocolError("a login field too long");
  ByteReader field(payload);
  field.Take(offset);
  std::string bytes(field.Take(length * 2));
  if (isPassword) {
    // The client swapped the halves of each byte and then XORed it with A5.
    for (char& byte : bytes) {
      const auto plain = static_cast<unsigned char>(static_cast<unsigned char>(byte) ^ 0xA5U);
      byte = static_cast<char>(((plain << 4) | (plain >> 4)) & 0xFF);
    }
  }
  return Utf8FromUtf16(bytes);
}

ByteReader AfterHeaders(std::string_view payload, std::uint32_t version) {
  ByteReader reader(payload);
  if (version >= kTdsVersion72) {
    const std::size_t total = reader.Number(4);
    if (total < 4) throw ProtocolError("a request with bad headers");
    reader.Take(total - 4);
  }
  return reader;
}

}  // namespace

LoginRequest ParseLogin(std::string_view payload) {
  ByteReader reader(payload);
  if (reader.Number(4) != payload.size()) throw ProtocolError("a login of the wrong length");
  LoginRequest login;
  login.Version = static_cast<std::uint32_t>(reader.Number(4));
  login.PacketSize = static_cast<std::uint32_t>(reader.Number(4));
  reader.Take(13);  // client program version, process, connection, first option byte
  login.Integrated = (reader.Number(1) & 0x80) != 0;
  login.User = LoginField(payload, 40);
  login.Password = LoginField(payload, 44, true);
  login.Database = LoginField(payload, 68);
  return login;
}

std::string ParseBatch(std::string_view payload, std::uint32_t version) {
  return Utf8FromUtf16(AfterHeaders(payload, version).Rest());
}

std::string ParseProcedureName(std::string_view payload, std::uint32_t version) {
  // The procedures that have a number instead of a name in the protocol, from 1.
  static const std::vector<std::string> kNumbered = Split(
      " sp_cursor sp_cursoropen sp_cursorprepare sp_cursorexecute sp_cursorprepexec "
      "sp_cursorunprepare sp_cursorfetch sp_cursoroption sp_cursorclose sp_executesql sp_prepare "
      "sp_execute sp_prepexec sp_prepexecrpc sp_unprepare",
      ' ');
  ByteReader reader = AfterHeaders(payload, version);
  const std::size_t length = reader.Number(2);
  if (length != 0xFFFF) return Utf8FromUtf16(reader.Take(length * 2));
  const std::size_t number = reader.Number(2);
  return number < kNumbered.size() ? kNumbered.at(number) : std::to_string(number);
}

TransactionRequest ParseTransaction(std::string_view payload, std::uint32_t version) {
  ByteReader reader = AfterHeaders(payload, version);
  const std::uint64_t type = reader.Number(2);
  TransactionRequest request;
  if (type == 5) {
    request.What = TransactionRequest::Kind::Begin;
  } else if (type == 7 || type == 8) {
    request.What =
        type == 7 ? TransactionRequest::Kind::Commit : TransactionRequest::Kind::Rollback;
    reader.Take(reader.Number(1));  // the transaction's name
    const std::string_view rest = reader.Rest();
    request.BeginsAnother = !rest.empty() && (static_cast<unsigned char>(rest[0]) & 1) != 0;
  }
  return request;
}

std::string AnswerPreLogin(std::string_view payload) {
  ByteReader options(payload);
  while (options.Number(1) != 0xFF) {
    ByteReader offsetAndLength(options.Take(4));
    const auto bigEndian = [&offsetAndLength] {
      const std::uint64_t high = offsetAndLength.Number(1);
      return static_cast<std::size_t>((high << 8) | offsetAndLength.Number(1));
    };
    const std::size_t offset = bigEndian();
    ByteReader value(payload);
    value.Take(offset);
    value.Take(bigEndian());
  }
  // Five options of five bytes and the terminator, then their values.
  static constexpr std::array<unsigned char, 35> kAnswer = {
      0,    0,  26, 0,    6,           // version
      1,    0,  32, 0,    1,           // encryption
      2,    0,  33, 0,    1,           // instance
      3,    0,  34, 0,    0,           // thread
      4,    0,  34, 0,    1,           // multiple active result sets
      0xFF, 10, 50, 0x06, 0x40, 0, 0,  // 10.50.1600
      2,                               // encryption is not supported
      0,                               // the instance name was right
      0,                               // no multiple result sets
  };
  return {kAnswer.begin(), kAnswer.end()};
}

}  // namespace talu::standin
