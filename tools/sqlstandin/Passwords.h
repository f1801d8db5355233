#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Messages.h"

namespace talu::standin {

/// What a batch holds of passwords, and what the journal may show of it. Takes any text, malformed
/// ones above all: what cannot be told from a password is hidden with it.
class PasswordMask {
 public:
  explicit PasswordMask(std::string_view batch);

  /// The batch with '***' in place of every password.
  const std::string& Batch() const { return batch_; }
  /// The message with *** in place of what it quotes of a password.
  SqlMessage Masked(const SqlMessage& message) const;

 private:
  bool Hides(std::string_view quoted) const;

  std::vector<std::string> passwords_;
  /// The quotes of the batch do not match: what is a password in it is not known for certain.
  bool isDoubtful_ = false;
  std::string batch_;
};

}  // namespace talu::standin
