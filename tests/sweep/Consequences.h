#pragma once

#include <cstdint>
#include <string_view>
#include <utility>
#include <vector>

namespace talu {

/// Where a failure is told.
enum class Told { Log, Box, ErrorBox, StatusLine, Nowhere };

/// What a failure costs beside its own statement. A line of a `Trace` is named by its beginning, or
/// by all of it with "$" behind.
struct Consequence {
  const char* Words;
  /// Which failures: the line that fails is one of these (none: any), ...
  std::vector<std::string_view> Fault = {};
  /// ... and so are the lines directly before and behind it; it lies between these two, the last
  /// such line before it and the first behind that; such a line is somewhere behind it; the error
  /// has this number. Empty: any.
  std::string_view Prev = {};
  std::string_view Next = {};
  std::string_view From = {};
  std::string_view To = {};
  std::string_view Behind = {};
  std::int32_t Number = 0;
  std::int32_t But = 0;
  talu::Told Told = Told::Log;
  /// Lost is what lies between two lines: from the failure itself when the first is empty, to the
  /// end when the second is. With "+" behind, the line itself is lost too.
  std::vector<std::pair<std::string_view, std::string_view>> Between = {};
  /// Lost is every later line that is one of these.
  std::vector<std::string_view> Lost = {};
  /// What happens instead, each as often as it stands here, and what may.
  std::vector<std::string_view> Instead = {};
  std::vector<std::string_view> Maybe = {};
};

/// Every consequence that the procedures have; a failure in none of these places costs its
/// statement, is logged, and changes nothing else.
extern const std::vector<Consequence> kConsequences;

}  // namespace talu
