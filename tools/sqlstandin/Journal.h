#pragma once

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Descriptor.h"
#include "Messages.h"

namespace talu::standin {

/// What became of a batch.
struct Outcome {
  std::optional<SqlMessage> Error;
  /// "cut" or "cancelled"; empty when the batch ran to its end.
  std::string_view Ending;
  /// The constructs that were only taken note of, each once.
  std::vector<std::string> Noted;
  /// Something is kept as text only.
  bool Keeps = false;
  /// Of the batch, from 1: where the error is, or the first note.
  std::size_t Line = 1;

  /// "carried", "kept", "noted" or "refused": the worst of what became of its statements.
  std::string_view Fate() const {
    return Error ? "refused" : !Noted.empty() ? "noted" : Keeps ? "kept" : "carried";
  }
};

/// The error with *** for what it quotes of a password of the batch.
std::optional<SqlMessage> Masked(std::optional<SqlMessage> error, std::string_view batch);

/// A file of what clients did: one JSON object per line, each on disk when the call returns.
/// Batches are as received, except that passwords are masked and unpaired surrogates become U+FFFD.
/// Safe to use from several threads. Each writing call raises std::runtime_error, with a line for
/// the person who runs the server, when the file cannot be written; after that nothing is written.
class Journal {
 public:
  /// Without a file it writes nothing. Raises std::runtime_error when the file cannot be opened.
  explicit Journal(const std::filesystem::path& file);

  void LoggedIn(int session, const std::string& user, const std::string& database,
                const std::optional<SqlMessage>& error);
  void LoggedOut(int session);

  /// `number` counts the batches of all sessions in order of arrival.
  void Batch(std::uint64_t number, int session, const std::string& database, std::string_view batch,
             const Outcome& outcome);

  /// Becomes readable when the file could not be written.
  int FailureDescriptor() const { return failureDescriptor_.Number(); }
  /// Raises again what the failed writing call raised; does nothing when none failed.
  void Check();

 private:
  /// One object: `head`, or `head` and the text of a batch and `tail`.
  void Write(std::string_view head, std::string_view text = {}, std::string_view tail = {});

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
