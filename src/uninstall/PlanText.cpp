#include "uninstall/PlanText.h"

#include <algorithm>
#include <cstddef>
#include <map>

namespace talu {
namespace {

using Fate = Verdict::Fate;

/// Lines of one part; a label with thousands would be slow, and nobody reads them.
constexpr std::size_t kMost = 200;

bool IsCounted(Step::Kind kind) {
  return kind == Step::Kind::File || kind == Step::Kind::Folder;
}

void Append(std::string& text, const std::string& heading, const std::vector<std::string>& lines) {
  if (lines.empty()) return;
  if (!text.empty()) text += "\r\r";
  text += heading;
  for (std::size_t i = 0; i < std::min(lines.size(), kMost); ++i) text += "\r" + lines[i];
  if (lines.size() > kMost) {
    text += "\rand " + std::to_string(lines.size() - kMost) +
            " more: the command line lists all of them";
  }
}

std::string With(const Step& step, const Verdict& verdict) {
  std::string line = std::string(KindName(step.What)) + " " + step.Name;
  if (!verdict.Why.empty()) line += ": " + verdict.Why;
  return line;
}

}  // namespace

std::string PlanText(const std::vector<Step>& steps, const std::vector<Verdict>& verdicts,
                     const std::string& goes) {
  std::map<Fate, std::vector<std::string>> lines;
  std::map<Step::Kind, std::size_t> counts;
  for (std::size_t i = 0; i < std::min(steps.size(), verdicts.size()); ++i) {
    const bool counted = verdicts[i].What == Fate::Goes && IsCounted(steps[i].What);
    if (counted) {
      ++counts[steps[i].What];
    } else {
      lines[verdicts[i].What].push_back(With(steps[i], verdicts[i]));
    }
  }
  std::vector<std::string> goesFirst;
  for (const auto& [kind, count] : counts)
    goesFirst.push_back(std::to_string(count) + " " + KindName(kind) + (count == 1 ? "" : "s"));
  std::vector<std::string>& others = lines[Fate::Goes];
  others.insert(others.begin(), goesFirst.begin(), goesFirst.end());
  std::string text;
  Append(text, "Left, because it cannot be removed now:", lines[Fate::Left]);
  Append(text, goes, lines[Fate::Goes]);
  Append(text, "Stays:", lines[Fate::Stays]);
  return text;
}

}  // namespace talu
