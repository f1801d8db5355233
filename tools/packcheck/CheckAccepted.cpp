#include "CheckAccepted.h"

#include "runtime/TextFunctions.h"

namespace talu::packcheck {
namespace {

const std::string kFile = "packcheck.ignore";

/// Marks what a line accepts. Returns why it accepts nothing; empty when it accepts something.
std::string Accept(std::string_view line, Findings& findings) {
  std::vector<std::string> parts = Split(line, '|');
  for (std::string& part : parts) part = Stripped(part);
  if (parts.size() != 4) return "it does not have four parts";
  if (FindRule(UCase(parts[0])) == nullptr) return "no finding is called " + Shown(parts[0]);
  if (parts[3].empty()) return "it gives no reason";
  bool accepted = false;
  for (Finding& finding : findings.All()) {
    if (UCase(parts[0]) != finding.Rule->Code) continue;
    if (UCase(parts[1]) != UCase(finding.Place.File)) continue;
    if (!parts[2].empty() && !Contains(finding.Place.Text, parts[2])) continue;
    finding.Accepted = parts[3];
    accepted = true;
  }
  return accepted ? "" : "the pack has no such finding";
}

}  // namespace

void AcceptFindings(CheckedPack& pack) {
  const std::string text = pack.Read(kFile).value_or("");
  int number = 0;
  // Line ends may be CR LF or LF.
  for (const std::string& whole : Split(Replace(text, "\r\n", "\n"), '\n')) {
    ++number;
    const std::string_view line = Stripped(whole);
    if (line.empty() || line.starts_with('#')) continue;
    const std::string why = Accept(line, pack.Findings);
    if (!why.empty()) pack.Findings.Add("ACC-LINE", {kFile, number, whole}, {why});
  }
}

}  // namespace talu::packcheck
