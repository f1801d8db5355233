#include "Rules.h"

#include "runtime/TextFunctions.h"

namespace talu::packcheck {
namespace {

/// The places of a text, shown as dots.
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

const Rule* FindRule(std::string_view code) {
  const std::string wanted = UCase(code);
  for (const RuleGroup& group : AllRules()) {
    for (const Rule& rule : group.Rules) {
      if (rule.Code == wanted) return &rule;
    }
  }
  return nullptr;
}

std::array<RuleGroup, 3> AllRules() {
  return {{{"In AppCfg.txt", ConfigurationRules()},
           {"In the scripts", ScriptRules()},
           {"In the files and what is done with them", ContentRules()}}};
}

std::string Explanation(const Rule& rule) {
  return "#### " + std::string(rule.Code) + " (" + SeverityName(rule.Weight) + ")\n\n" +
         std::string(rule.Why) + "\n\n- What will happen: " + WithoutPlaces(rule.Will) +
         "\n- What to do: " + WithoutPlaces(rule.Do) + "\n";
}

}  // namespace talu::packcheck
