#pragma once

#include <string_view>

namespace talu::packcheck {

/// How much a finding weighs. A note is worth knowing and needs no action.
enum class Severity { Note, Warning, Error };

/// "note", "warning" or "error".
const char* SeverityName(Severity severity);

/// One kind of finding. The texts are everything that is ever said about it: by `check`, by
/// `--explain` and in the manual.
struct Rule {
  std::string_view Code;
  Severity Weight;
  /// One sentence: what will happen. {0}, {1} and so on stand for what the finding is about.
  std::string_view Will;
  /// One sentence: what to do about it, with the same places.
  std::string_view Do;
  /// Why it is so, for someone who meets it for the first time.
  std::string_view Why;
};

}  // namespace talu::packcheck
