#pragma once

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

#include "Descriptor.h"
#include "Messages.h"

namespace talu::standin {

/// A file of what clients did: one JSON object a line, each on disk when the call returns. Batches
/// are as they were received, but for passwords, which are masked, and surrogates without a
/// partner, which become U+FFFD. Safe to use from several threads. Each writing call raises
/// std::runtime_error, with a line for whoever runs the server, when the file cannot be written:
/// from then on nothing is written.
class Journal {
 public:
  /// Without a file nothing is written. Raises std::runtime_error when the file cannot be opened.
  explicit Journal(const std::filesystem::path& file);

  void LoggedIn(int session, const std::string& user, const std::string& database,
                const std::optional<SqlMessage>& error);
  void LoggedOut(int session);

  struct Outcome {
    std::optional<SqlMessage> Error;
    /// "cut" or "cancelled"; empty when the batch came to its end.
    std::string_view Ending;
  };
  /// `number` counts the batches of all sessions in the order in which they came.
  void Batch(std::uint64_t number, int session, const std::string& database, std::string_view batch,
             const Outcome& outcome);

  /// Can be read from the moment when the file could not be written.
  int FailureDescriptor() const { return failureDescriptor_.Number(); }
  /// Raises what the writing call that failed has raised; nothing when none has.
  void Check();

 private:
  void Write(const std::string& line);

  struct Closer {
    void operator()(std::FILE* file) const { std::fclose(file); }
  };
  std::mutex mutex_;
  std::filesystem::path name_;
  std::string failure_;
  Descriptor failureDescriptor_;
  std::unique_ptr<std::FILE, Closer> file_;
};

}  // namespace talu::standin
