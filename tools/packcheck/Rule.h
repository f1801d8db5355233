#pragma once

#include <string_view>

namespace talu::packcheck {

/// The weight of a finding. A note is worth knowing and needs no action.
enum class Severity { Note, Warning, Error };

/// "note", "warning" or "error".
const char* SeverityName(Severity severity);

/// One kind of finding. These texts are all that is said about it: by `check`, by `--explain` and
/// in the manual.
struct Rule {
  std::string_view Code;
  Severity Weight;
  /// One sentence: what will happen. {0}, {1} and so on stand for what the finding is about.
  std::string_view Will;
  /// One sentence: what to do about it, with the same placeholders.
  std::string_view Do;
  /// The reason, for someone who sees the finding for the first time.
  std::string_view Why;
};

}  // namespace talu::packcheck
