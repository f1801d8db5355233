#include "CheckCommand.h"

#include <filesystem>
#include <map>
#include <ostream>
#include <stdexcept>

#include "CheckAccepted.h"
#include "CheckConfiguration.h"
#include "CheckContent.h"
#include "CheckPack.h"
#include "CheckScripts.h"
#include "runtime/TextFunctions.h"

namespace talu::packcheck {
namespace {

constexpr int kClean = 0;
constexpr int kWarnings = 1;
constexpr int kErrors = 2;

void CheckEverything(CheckedPack& pack) {
  const Configuration configuration(pack);
  if (pack.HasFile("AppCfg.txt")) {
    CheckScripts(pack, configuration);
    CheckContent(pack, configuration);
  }
  AcceptFindings(pack);
  pack.Findings.Sort();
}

std::string Counted(int count, const std::string& thing) {
  return std::to_string(count) + " " + thing + (count == 1 ? "" : "s");
}

}  // namespace

int CheckCommand(const CheckOptions& options, std::ostream& out) {
  if (!std::filesystem::is_directory(options.Pack)) {
    throw std::runtime_error("there is no folder " + options.Pack.string());
  }
  CheckedPack pack(options.Pack, options.CodePage);
  CheckEverything(pack);
  std::map<Severity, int> counts;
  int accepted = 0;
  for (const Finding& finding : pack.Findings.All()) {
    if (options.Json) out << finding.ToJson() << '\n';
    if (!finding.Accepted.empty()) {
      accepted += 1 + finding.More;
      continue;
    }
    counts[finding.Rule->Weight] += 1 + finding.More;
    if (!options.Json) out << finding.ToText();
  }
  if (!options.Json) {
    out << Counted(counts[Severity::Error], "error") << ", "
        << Counted(counts[Severity::Warning], "warning") << ", "
        << Counted(counts[Severity::Note], "note");
    if (accepted > 0) out << "; " << Counted(accepted, "finding") << " accepted";
    out << '\n';
  }
  if (counts[Severity::Error] > 0) return kErrors;
  return counts[Severity::Warning] > 0 ? kWarnings : kClean;
}

void ExplainCommand(const std::string& code, std::ostream& out) {
  if (code == "all") {
    for (const RuleGroup& group : kRuleGroups) {
      out << "### " << group.Heading << "\n\n";
      for (const Rule& rule : group.Rules) out << Explanation(rule) << '\n';
    }
    return;
  }
  const Rule* rule = FindRule(UCase(code));
  if (rule == nullptr) {
    throw std::runtime_error("no finding is called " + code + "; \"all\" explains every one");
  }
  out << Explanation(*rule);
}

}  // namespace talu::packcheck
