#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Messages.h"

namespace talu::standin {

/// The types of values in a result.
enum class ValueType { Int, BigInt, Float, Text, Bytes };

struct ResultColumn {
  std::string Name;
  ValueType Type = ValueType::Text;
  /// The most characters (UTF-16 units) of a text, 1 to 4000; 0 for a text of any length.
  std::size_t Length = 0;
};

/// Statements in a "done" mark: the kind of statement whose row count it gives.
enum class DoneCommand : std::uint16_t {
  None = 0,
  Select = 0xC1,
  Insert = 0xC3,
  Delete = 0xC4,
  Update = 0xC5
};

/// Writes the answer to one message to a sink, which gets one or more whole packets per call.
class ReplyWriter {
 public:
  using Sink = std::function<void(std::string_view packets)>;

  /// `version` is the client's (0 before it has logged in); `packetSize` includes the header.
  ReplyWriter(Sink sink, std::uint32_t version, std::size_t packetSize)
      : sink_(std::move(sink)), version_(version), packetSize_(packetSize) {}

  /// Bytes without a token of their own: the answer to a pre-login.
  void Raw(std::string_view bytes) { body_.append(bytes); }

  void LoginAccepted();
  void DatabaseChanged(std::string_view newName, std::string_view oldName) {
    Change(ChangeType::Database, newName, oldName);
  }
  void LanguageChanged(std::string_view language) { Change(ChangeType::Language, language, ""); }
  void PacketSizeChanged(std::size_t newSize, std::size_t oldSize) {
    Change(ChangeType::PacketSize, std::to_string(newSize), std::to_string(oldSize));
  }
  void CollationChanged();
  void SessionReset() { Change(ChangeType::Reset, "", ""); }
  void TransactionBegan(std::uint64_t transaction);
  void TransactionEnded(std::uint64_t transaction, bool committed);

  /// An error (severity above 10) or an informational message. `line` counts from 1.
  void Tell(const SqlMessage& message, std::size_t line);

  // A result: its columns, then for each row BeginRow and one value per column, in order.
  void Columns(const std::vector<ResultColumn>& columns);
  void BeginRow();
  void Null(const ResultColumn& column);
  void Int(const ResultColumn& column, std::int64_t value);
  void Float(double value);
  /// Cuts a text that is longer than its column: the column's length is a promise to the client.
  void Text(const ResultColumn& column, std::string_view utf8);
  void Bytes(std::string_view bytes);

  /// Ends one statement's answer; `rows` when the statement counts them.
  void Done(DoneCommand command, std::optional<std::uint64_t> rows, bool failed = false);
  /// Ends an answer that an attention cut short, by acknowledging the attention.
  void DoneAttention();
  /// Sends the rest, marked as the end.
  void Finish();

 private:
  void Number(std::uint64_t value, std::size_t size);
  void ShortText(std::string_view utf8);
  /// The first three have texts.
  enum class ChangeType : std::uint8_t {
    Database = 1,
    Language = 2,
    PacketSize = 4,
    Collation = 7,
    Begin = 8,
    Commit = 9,
    Rollback = 10,
    Reset = 18,
  };
  void Change(ChangeType type, std::string_view newValue, std::string_view oldValue);
  void Collation();
  void LongValue(std::string_view bytes);
  void BeginToken();
  void PutDone(unsigned status);
  void Flush(bool last);

  bool HasLongTypes() const;

  Sink sink_;
  std::uint32_t version_;
  std::size_t packetSize_;
  std::string body_;
  std::string scratch_;
  std::uint8_t packetNumber_ = 1;

  struct PendingDone {
    unsigned Status;
    DoneCommand Command;
    std::uint64_t Rows;
  };
  /// The last "done": only the next token shows that it was not the final one.
  std::optional<PendingDone> pending_;
};

}  // namespace talu::standin
