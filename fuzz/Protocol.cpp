// What arrives at the stand-in: packets, the messages in them, and the text of a batch.

#include <cstdint>
#include <functional>

#include "Messages.h"
#include "Naive.h"
#include "Packets.h"
#include "Parser.h"
#include "Requests.h"
#include "Text.h"
#include "sql/Passwords.h"

namespace talu::standin {
namespace {

constexpr std::size_t kLimit = 3000;

std::size_t Byte(const std::string& bytes, std::size_t at) {
  if (at >= bytes.size()) throw naive::Error{};
  return static_cast<unsigned char>(bytes[at]);
}

std::size_t Little(const std::string& bytes, std::size_t at, int size) {
  std::size_t number = 0;
  for (int i = size - 1; i >= 0; --i)
    number = number * 256 + Byte(bytes, at + static_cast<std::size_t>(i));
  return number;
}

std::string Part(const std::string& bytes, std::size_t at, std::size_t size) {
  if (at > bytes.size() || size > bytes.size() - at) throw naive::Error{};
  return bytes.substr(at, size);
}

std::string Told(int type, bool reset, const std::string& payload) {
  return std::to_string(type) + (reset ? " reset " : " ") + payload;
}

/// The messages in a whole stream; "broken" as the last where it breaks the protocol.
std::vector<std::string> Messages(const std::string& bytes) {
  std::vector<std::string> messages;
  std::string payload;
  int type = 0;
  bool reset = false;
  bool inside = false;
  for (std::size_t at = 0; at + 8 <= bytes.size();) {
    const int next = static_cast<int>(Byte(bytes, at));
    const std::size_t status = Byte(bytes, at + 1);
    const std::size_t length = Byte(bytes, at + 2) * 256 + Byte(bytes, at + 3);
    const bool known = next == 1 || next == 3 || next == 6 || next == 7 || next == 14 ||
                       next == 16 || next == 17 || next == 18;
    if (inside && next == 6 && type != 6) inside = false;
    if (!inside) {
      payload.clear();
      reset = false;
    }
    const bool fits = length >= 8 && payload.size() + length - 8 <= kLimit;
    if (!known || !fits || (inside && next != type)) {
      messages.push_back("broken");
      break;
    }
    type = next;
    inside = true;
    if ((status & 0x18) != 0) reset = true;
    if (at + length > bytes.size()) break;
    payload += bytes.substr(at + 8, length - 8);
    at += length;
    if ((status & 1) == 0) continue;
    inside = false;
    if ((status & 2) == 0) messages.push_back(Told(type, reset, payload));
  }
  return messages;
}

/// The same as the server puts them together, `step` bytes at a time.
std::vector<std::string> Read(const std::string& bytes, std::size_t step) {
  std::vector<std::string> messages;
  MessageReader reader(kLimit);
  bool broken = false;
  for (std::size_t at = 0; at < bytes.size() && !broken; at += step) {
    try {
      reader.Feed(std::string_view(bytes).substr(at, step));
    } catch (const ProtocolError&) {
      broken = true;
    }
    while (const std::optional<Message> message = reader.Next())
      messages.push_back(
          Told(static_cast<int>(message->Type), message->ResetsSession, message->Payload));
  }
  if (broken) messages.emplace_back("broken");
  return messages;
}

std::string Wide(const std::string& utf8) {
  std::string bytes;
  AppendUtf16(bytes, utf8);
  return bytes;
}

std::string Even(std::string bytes) {
  if (bytes.size() % 2 != 0) bytes.pop_back();
  return bytes;
}

std::string Login(const std::string& bytes) {
  if (Little(bytes, 0, 4) != bytes.size()) throw naive::Error{};
  std::string told = std::to_string(Little(bytes, 4, 4)) + " " +
                     std::to_string(Little(bytes, 8, 4)) +
                     ((Byte(bytes, 25) & 0x80) != 0 ? " integrated " : " ");
  for (const std::size_t directory : {40U, 44U, 68U}) {
    const std::size_t length = Little(bytes, directory + 2, 2);
    if (length == 0) continue;
    if (length > 128) throw naive::Error{};
    for (const char c : Part(bytes, Little(bytes, directory, 2), length * 2)) {
      const auto plain = static_cast<unsigned char>(c);
      const int swapped = ((plain ^ 0xA5) << 4 | (plain ^ 0xA5) >> 4) & 0xFF;
      told += directory == 44 ? static_cast<char>(swapped) : c;
    }
  }
  return told;
}

std::string AfterHeaders(const std::string& bytes) {
  const std::size_t headers = Little(bytes, 0, 4);
  if (headers < 4) throw naive::Error{};
  Part(bytes, 0, headers);
  return bytes.substr(headers);
}

std::string Transaction(const std::string& bytes) {
  const std::string rest = AfterHeaders(bytes);
  const std::size_t type = Little(rest, 0, 2);
  if (type == 5) return "begin";
  if (type != 7 && type != 8) return "other";
  const std::size_t name = Byte(rest, 2);
  Part(rest, 3, name);
  const bool another = rest.size() > 3 + name && (Byte(rest, 3 + name) & 1) != 0;
  return std::string(type == 7 ? "commit" : "rollback") + (another ? " begin" : "");
}

std::string PreLogin(const std::string& bytes) {
  for (std::size_t at = 0; Byte(bytes, at) != 0xFF; at += 5) {
    const std::size_t offset = Byte(bytes, at + 1) * 256 + Byte(bytes, at + 2);
    Part(bytes, offset, Byte(bytes, at + 3) * 256 + Byte(bytes, at + 4));
  }
  return "good";
}

/// Both readings of one message are the same, or both refuse it.
void Compare(const char* what, const std::function<std::string()>& server,
             const std::function<std::string()>& plain) {
  std::string left = "refused";
  std::string right = "refused";
  try {
    left = server();
  } catch (const ProtocolError&) {
  }
  try {
    right = plain();
  } catch (const naive::Error&) {
  }
  naive::Same(left, right, what);
}

void CompareRequests(const std::string& bytes) {
  Compare(
      "login",
      [&] {
        const LoginRequest login = ParseLogin(bytes);
        return std::to_string(login.Version) + " " + std::to_string(login.PacketSize) +
               (login.Integrated ? " integrated " : " ") + Wide(login.User) + Wide(login.Password) +
               Wide(login.Database);
      },
      [&] { return Login(bytes); });
  Compare(
      "batch", [&] { return Wide(ParseBatch(bytes, kTdsVersion74)); },
      [&] { return Even(AfterHeaders(bytes)); });
  Compare(
      "batch without headers", [&] { return Wide(ParseBatch(bytes, kTdsVersion71)); },
      [&] { return Even(bytes); });
  Compare(
      "procedure", [&] { return Wide(ParseProcedureName(bytes, kTdsVersion74)); },
      [&] {
        const std::string rest = AfterHeaders(bytes);
        const std::size_t length = Little(rest, 0, 2);
        if (length != 0xFFFF) return Part(rest, 2, length * 2);
        // The name of a numbered procedure is the server's own affair.
        Little(rest, 2, 2);
        return Wide(ParseProcedureName(bytes, kTdsVersion74));
      });
  Compare(
      "transaction",
      [&] {
        const TransactionRequest request = ParseTransaction(bytes, kTdsVersion74);
        const char* names[] = {"begin", "commit", "rollback", "other"};
        return std::string(names[static_cast<int>(request.What)]) +
               (request.BeginsAnother ? " begin" : "");
      },
      [&] { return Transaction(bytes); });
  Compare(
      "pre-login", [&] { return AnswerPreLogin(bytes).empty() ? "" : "good"; },
      [&] { return PreLogin(bytes); });
}

/// The tokens of a batch lie in it in order, up to a character that the language lacks.
void ReadTokens(const std::string& batch) {
  std::size_t end = 0;
  Reader reader(batch);
  try {
    for (Token token = reader.Take(); token.Kind != TokenKind::End; token = reader.Take()) {
      if (token.At < end || token.Raw.empty()) std::abort();
      naive::Same(std::string(token.Raw), Part(batch, token.At, token.Raw.size()), "token");
      end = token.At + token.Raw.size();
      token.Value();
    }
  } catch (const NotKnown&) {
  }
}

/// A batch ends in statements or in the server's error.
void ReadBatch(const std::string& batch) {
  const sql::PasswordMask mask(batch);
  try {
    ReadTokens(batch);
    Parser parser(batch);
    while (parser.NextStatement()) {
    }
  } catch (const SqlFailure& failure) {
    for (const SqlMessage& message : failure.Messages) mask.Hides(message.Text);
  }
}

}  // namespace
}  // namespace talu::standin

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace talu::standin;
  const std::string bytes(data, data + size);
  for (const std::size_t step : {std::size_t{1}, std::size_t{7}, size + 1})
    talu::naive::Same(Read(bytes, step), Messages(bytes), "message");
  CompareRequests(bytes);
  ReadBatch(bytes);
  return 0;
}
