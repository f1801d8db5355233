#include "Finding.h"

#include <algorithm>
#include <cstdint>

#include "platform/simulated/Journal.h"
#include "runtime/TextFunctions.h"

namespace talu::packcheck {
namespace {

constexpr std::size_t kListed = 20;
constexpr Position kShownLength = 60;

std::string Filled(std::string_view text, std::initializer_list<std::string> arguments) {
  std::string filled(text);
  int number = 0;
  for (const std::string& argument : arguments) {
    filled = Replace(filled, "{" + std::to_string(number++) + "}", argument);
  }
  return filled;
}

}  // namespace

std::string Finding::ToText() const {
  std::string text = Place.File;
  if (Place.Line > 0) text += ":" + std::to_string(Place.Line);
  text += std::string(": ") + SeverityName(Rule->Weight) + " " + std::string(Rule->Code) + ": " +
          Will + "\n    " + Do + (Mended ? " (packcheck fix does it.)" : "") + "\n";
  if (More > 0) text += "    (and " + std::to_string(More) + " more like this in the file)\n";
  return text;
}

std::string Finding::ToJson() const {
  JournalEvent event{"finding",
                     {{"file", Place.File},
                      {"line", static_cast<std::int64_t>(Place.Line)},
                      {"code", std::string(Rule->Code)},
                      {"severity", std::string(SeverityName(Rule->Weight))},
                      {"will", Will},
                      {"do", Do}}};
  if (More > 0) event.Fields.emplace_back("more", static_cast<std::int64_t>(More));
  if (Mended) event.Fields.emplace_back("fix", true);
  if (!Accepted.empty()) event.Fields.emplace_back("accepted", Accepted);
  return event.ToJson();
}

void Findings::Add(KnownRule code, const Place& place,
                   std::initializer_list<std::string> arguments) {
  const Rule& rule = *code;
  Finding finding{&rule, place, Filled(rule.Will, arguments), Filled(rule.Do, arguments), 0, ""};
  // Notes that say the same are one.
  const bool note = rule.Weight == Severity::Note;
  auto& listed = byFileAndCode_[{place.File, rule.Code, note ? finding.Will : ""}];
  if (listed.size() == (note ? 1 : kListed)) {
    ++findings_[listed.back()].More;
    return;
  }
  if (!seen_.emplace(place.File, place.Line, rule.Code, finding.Will).second) return;
  listed.push_back(findings_.size());
  findings_.push_back(std::move(finding));
}

void Findings::Sort() {
  byFileAndCode_.clear();
  std::ranges::stable_sort(findings_, {}, [](const Finding& finding) {
    return std::pair(finding.Place.File, finding.Place.Line);
  });
}

std::string Shown(std::string_view text) {
  std::string shown;
  for (const char character : Left(text, kShownLength)) {
    if (character == '\r') {
      shown += "\\r";
    } else if (character == '\n') {
      shown += "\\n";
    } else if (character == '\t') {
      shown += "\\t";
    } else {
      shown += character;
    }
  }
  return '"' + shown + (Length(text) > kShownLength ? "..." : "") + '"';
}

}  // namespace talu::packcheck
