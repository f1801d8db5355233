#pragma once

#include <sybfront.h>
// After sybfront.h.
#include <sybdb.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "Messages.h"
#include "Packets.h"

namespace talu::standin {

/// What came back of a login or a batch.
struct Answer {
  std::vector<SqlMessage> Messages;
  /// The values of all results, row by row; a null is "NULL".
  std::vector<std::vector<std::string>> Rows;
  /// The rows that each statement changed, of those that say so.
  std::vector<int> Counts;
  std::string Database;
  /// The server closed the connection.
  bool IsClosed = false;

  /// All of it on one line: "1,a;2,NULL" for rows, "!208" for errors, "i0:text" for own messages.
  std::string Summary() const;
};

/// FreeTDS's own client library against the server.
class TestClient {
 public:
  explicit TestClient(std::uint16_t port) : port_(port) {}
  ~TestClient();
  TestClient(const TestClient&) = delete;
  TestClient& operator=(const TestClient&) = delete;

  Answer LogIn(const std::string& user, const std::string& password,
               const std::string& database = "", int version = DBVERSION_74);
  Answer Batch(const std::string& utf8);
  /// Sends a batch and takes it back some milliseconds later; returns when the server has agreed.
  void Cancel(const std::string& utf8, int milliseconds);

 private:
  std::uint16_t port_;
  DBPROCESS* process_ = nullptr;
};

/// A client that sends what it is told to, be it no protocol at all.
class RawClient {
 public:
  explicit RawClient(std::uint16_t port);
  ~RawClient();
  RawClient(const RawClient&) = delete;
  RawClient& operator=(const RawClient&) = delete;

  /// False when the server has hung up.
  bool Send(std::string_view bytes) const;
  void SendMessage(MessageType type, std::string_view payload) const;
  /// A short answer with its header; empty when the server has hung up.
  std::string Receive() const;
  /// Logs in with this payload; returns whether the server lets it.
  bool LogIn(const std::string& payload) const;

 private:
  int socket_;
};

/// The payload of a login.
std::string LoginPayload(const std::string& user, const std::string& password,
                         const std::string& database = "");
/// The payload of a batch.
std::string BatchPayload(std::string_view utf8);

std::string Utf16(std::string_view utf8);

}  // namespace talu::standin
