#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "Messages.h"
#include "Packets.h"
#include "Requests.h"

namespace talu::standin {

/// The answer to one message, taken apart.
struct Answer {
  std::vector<SqlMessage> Messages;
  std::vector<std::string> Columns;
  /// The values of all results, row by row; a null is "NULL".
  std::vector<std::vector<std::string>> Rows;
  std::vector<std::uint64_t> Counts;
  std::string Database;
  bool IsAttention = false;
  /// The server closed the connection instead of, or after, answering.
  bool IsClosed = false;

  /// All of it on one line: "1,a;2,NULL" for rows, "!208" for errors, "i0:text" for own messages.
  std::string Summary() const;
};

/// A client that knows just enough of the protocol to say anything to the server.
class TestClient {
 public:
  explicit TestClient(std::uint16_t port);
  ~TestClient();
  TestClient(const TestClient&) = delete;
  TestClient& operator=(const TestClient&) = delete;

  Answer LogIn(const std::string& user, const std::string& password,
               const std::string& database = "", std::uint32_t version = kTdsVersion74);
  Answer Batch(std::string_view utf8);

  void SendBatch(std::string_view utf8);
  /// One message, in packets of `packetSize`.
  void SendMessage(MessageType type, std::string_view payload, std::size_t packetSize = 4096);
  /// False when the server has hung up.
  bool SendBytes(std::string_view bytes);
  /// Waits for one answer, or for the end of the connection.
  Answer Receive();

 private:
  std::string ReceiveBody();

  int socket_;
  bool isClosed_ = false;
  std::uint32_t version_ = 0;
};

/// The payload of a login.
std::string LoginPayload(const std::string& user, const std::string& password,
                         const std::string& database, std::uint32_t version);

}  // namespace talu::standin
