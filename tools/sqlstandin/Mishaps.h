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
  enum class Effect { Fail, Cut, Delay };
  /// A rule is "KEY", for a failure also "KEY=NUMBER:MESSAGE", for a delay "KEY=MILLISECONDS"; the
  /// key is a number or a text. Raises std::invalid_argument, with the reason, when it is
  /// malformed.
  void Add(Effect effect, std::string_view rule, bool isNumber = false);
  void DelayAll(std::chrono::milliseconds delay) { delay_ = delay; }

  /// What to do to this batch.
  Mishap For(std::uint64_t number, std::string_view batch) const;

 private:
  struct Rule {
    std::uint64_t Number = 0;  // 0: the text decides
    std::string Text;
    Mishap What;
  };

  std::chrono::milliseconds delay_{0};
  std::vector<Rule> rules_;
};

}  // namespace talu::standin
