#pragma once

#include <span>
#include <string>

#include "RulesConfiguration.h"
#include "RulesContent.h"
#include "RulesScripts.h"

namespace talu::packcheck {

/// The rules for one part of a pack, under a heading of the manual.
struct RuleGroup {
  std::string_view Heading;
  std::span<const Rule> Rules;
};

/// All rules, in the order of the manual.
inline constexpr RuleGroup kRuleGroups[] = {
    {"In AppCfg.txt", kConfigurationRules},
    {"In the scripts", kScriptRules},
    {"In the files and what is done with them", kContentRules},
};

/// The rule with this code, in capitals, or a null pointer.
constexpr const Rule* FindRule(std::string_view code) {
  for (const RuleGroup& group : kRuleGroups) {
    for (const Rule& rule : group.Rules) {
      if (rule.Code == code) return &rule;
    }
  }
  return nullptr;
}

/// A rule by its code: an unknown code does not compile.
class KnownRule {
 public:
  consteval KnownRule(const char* code) : rule_(*FindRule(code)) {}
  const Rule& operator*() const { return rule_; }

 private:
  const Rule& rule_;
};

/// A rule's section of the manual, in Markdown.
std::string Explanation(const Rule& rule);

}  // namespace talu::packcheck
