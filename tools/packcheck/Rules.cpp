#include "Rules.h"

#include "runtime/TextFunctions.h"

namespace talu::packcheck {
namespace {

/// The text with dots for its placeholders.
std::string WithoutPlaces(std::string_view text) {
  std::string shown(text);
  for (const char* place : {"{0}", "{1}", "{2}"}) shown = Replace(shown, place, "…");
  return shown;
}

}  // namespace

const char* SeverityName(Severity severity) {
  switch (severity) {
    case Severity::Note:
      return "note";
    case Severity::Warning:
      return "warning";
    default:
      return "error";
  }
}

std::string Explanation(const Rule& rule) {
  return "#### " + std::string(rule.Code) + " (" + SeverityName(rule.Weight) + ")\n\n" +
         std::string(rule.Why) + "\n\n- What will happen: " + WithoutPlaces(rule.Will) +
         "\n- What to do: " + WithoutPlaces(rule.Do) + "\n";
}

}  // namespace talu::packcheck
