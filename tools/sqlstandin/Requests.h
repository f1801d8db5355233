#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "Packets.h"

namespace talu::standin {

/// Protocol versions as in a login.
inline constexpr std::uint32_t kTdsVersion70 = 0x70000000;
inline constexpr std::uint32_t kTdsVersion71 = 0x71000001;
inline constexpr std::uint32_t kTdsVersion72 = 0x72090002;
inline constexpr std::uint32_t kTdsVersion74 = 0x74000004;

/// What a client sends to log in.
struct LoginRequest {
  std::uint32_t Version = 0;
  std::uint32_t PacketSize = 0;
  bool Integrated = false;
  std::string User;
  std::string Password;
  std::string Database;
};

/// The request of a transaction-manager message.
struct TransactionRequest {
  enum class Kind { Begin, Commit, Rollback, Other };
  Kind What = Kind::Other;
  /// A commit or rollback that begins the next transaction at once.
  bool BeginsAnother = false;
};

// Each of these reads one message's payload and raises ProtocolError for a malformed one.

LoginRequest ParseLogin(std::string_view payload);
/// The text of a batch, in UTF-8. Since TDS 7.2 a batch has headers before its text.
std::string ParseBatch(std::string_view payload, std::uint32_t version);
/// The name of the procedure in a remote call.
std::string ParseProcedureName(std::string_view payload, std::uint32_t version);
TransactionRequest ParseTransaction(std::string_view payload, std::uint32_t version);
/// Checks a pre-login message and returns the payload of the answer: no encryption, no MARS.
std::string AnswerPreLogin(std::string_view payload);

}  // namespace talu::standin
