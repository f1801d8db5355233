#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace talu {

/// Where a failure is told.
enum class Told { Log, Box, ErrorBox, StatusLine, Nowhere };

/// What a failure costs beside its own statement. A line of a `Trace` is named by its beginning, or
/// by all of it with "$" behind; "*" is any text. In the table of Consequences.cpp each has its
/// words, and then its clauses, which "|" divides:
struct Consequence {
  std::string Words;
  /// fails: the line that fails is one of these (without: any).
  std::vector<std::string> Fault;
  /// after, before: the lines directly before and behind it.
  std::string Prev;
  std::string Next;
  /// within FROM .. TO: the last such line before it, the first behind that.
  std::string From;
  std::string To;
  /// ahead-of: such a line is somewhere behind it.
  std::string Behind;
  /// only, not: the error is this one, or any but this one.
  std::int32_t Number = 0;
  std::int32_t But = 0;
  /// told: where; without, an entry of the log.
  talu::Told Told = Told::Log;
  /// skips FROM .. TO: lost is what lies between two lines: from the failure itself when the first
  /// is empty, to the end when the second is. With "+" behind, the line itself is lost too.
  std::vector<std::pair<std::string, std::string>> Between;
  /// loses: every later line that is one of these.
  std::vector<std::string> Lost;
  /// instead: what happens in their place, each as often as it stands here; perhaps: what may.
  std::vector<std::string> Instead;
  std::vector<std::string> Maybe;
};

/// Every consequence that the procedures have; a failure in none of these places costs its
/// statement, is logged, and changes nothing else.
const std::vector<Consequence>& Consequences();

}  // namespace talu
