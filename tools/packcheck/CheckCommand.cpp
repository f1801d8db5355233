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
#include "FixPack.h"
#include "runtime/TextFunctions.h"

namespace talu::packcheck {
namespace {

constexpr int kClean = 0;
constexpr int kWarnings = 1;
constexpr int kErrors = 2;

std::string Counted(int count, const std::string& thing) {
  return std::to_string(count) + " " + thing + (count == 1 ? "" : "s");
}

struct Counts {
  explicit Counts(const Findings& findings) {
    for (const Finding& finding : findings.All()) {
      (finding.Accepted.empty() ? Of[finding.Rule->Weight] : Accepted) += 1 + finding.More;
    }
  }

  std::map<Severity, int> Of;
  int Accepted = 0;
};

}  // namespace

void CheckEverything(CheckedPack& pack) {
  const Configuration configuration(pack);
  if (pack.HasFile("AppCfg.txt")) {
    CheckScripts(pack, configuration);
    CheckContent(pack, configuration);
  }
  AcceptFindings(pack);
  pack.Findings.Sort();
}

std::string CountFindings(const Findings& findings) {
  Counts counts(findings);
  std::string text = Counted(counts.Of[Severity::Error], "error") + ", " +
                     Counted(counts.Of[Severity::Warning], "warning") + ", " +
                     Counted(counts.Of[Severity::Note], "note");
  if (counts.Accepted > 0) text += "; " + Counted(counts.Accepted, "finding") + " accepted";
  return text;
}

int CheckCommand(const CheckOptions& options, std::ostream& out) {
  if (!std::filesystem::is_directory(options.Pack)) {
    throw std::runtime_error("there is no folder " + options.Pack.string());
  }
  CheckedPack pack(options.Pack, options.CodePage);
  CheckEverything(pack);
  MarkMended(pack, options.Pack, options.CodePage, CheckEverything);
  for (const Finding& finding : pack.Findings.All()) {
    if (options.Json) out << finding.ToJson() << '\n';
    if (!options.Json && finding.Accepted.empty()) out << finding.ToText();
  }
  if (!options.Json) out << CountFindings(pack.Findings) << '\n';
  Counts counts(pack.Findings);
  if (counts.Of[Severity::Error] > 0) return kErrors;
  return counts.Of[Severity::Warning] > 0 ? kWarnings : kClean;
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
