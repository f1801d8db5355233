#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Messages.h"

namespace talu::standin {

/// What the server is to do to a batch.
struct Mishap {
  std::chrono::milliseconds Delay{0};
  /// Cuts the connection; the batch is not executed.
  bool Cuts = false;
  /// The answer to the batch, which is not executed.
  std::optional<SqlMessage> Failure;
};

/// The failures, delays and cuts requested on the server's command line. A rule applies to the
/// batch with a number, counted from 1 over all sessions, or to every batch that contains a text.
class Mishaps {
 public:
  // Each raises std::invalid_argument, with the reason, when the rule is malformed.

  /// "N" or "N=NUMBER:MESSAGE".
  void FailNumber(std::string_view rule);
  /// "TEXT" or "TEXT=NUMBER:MESSAGE".
  void FailText(std::string_view rule);
  void CutNumber(std::string_view rule);
  void CutText(std::string_view text);
  void DelayAll(std::chrono::milliseconds delay) { delay_ = delay; }
  /// "TEXT=MILLISECONDS".
  void DelayText(std::string_view rule);

  /// What to do to this batch.
  Mishap For(std::uint64_t number, std::string_view batch) const;

 private:
  struct Rule {
    std::uint64_t Number = 0;  // 0: the text decides
    std::string Text;
    Mishap What;
  };
  void Add(Rule rule);

  std::chrono::milliseconds delay_{0};
  std::vector<Rule> rules_;
};

}  // namespace talu::standin
