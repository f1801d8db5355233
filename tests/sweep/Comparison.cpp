#include "Comparison.h"

#include <algorithm>
#include <string_view>

#include "runtime/TextFunctions.h"

namespace talu {
namespace {

using Lines = std::vector<Trace::Line>;

bool Is(const std::string& text, std::string_view pattern) {
  if (pattern.ends_with('$')) return text == pattern.substr(0, pattern.size() - 1);
  const std::size_t star = pattern.find('*');
  if (star == std::string_view::npos) return text.starts_with(pattern);
  return text.starts_with(pattern.substr(0, star)) &&
         Contains(std::string_view(text).substr(star), pattern.substr(star + 1));
}

bool IsOneOf(const std::string& text, const std::vector<std::string>& patterns) {
  return std::ranges::any_of(patterns, [&](std::string_view pattern) { return Is(text, pattern); });
}

/// The first line from `from` on that is the one named; behind the last when there is none.
std::size_t Find(const Lines& lines, std::size_t from, std::string_view pattern) {
  while (from < lines.size() && !Is(lines[from].Text, pattern)) ++from;
  return from;
}

bool Applies(const Consequence& one, const Lines& whole, std::size_t at, std::int32_t number) {
  if (!one.Fault.empty() && !IsOneOf(whole[at].Text, one.Fault)) return false;
  if (at == 0 ? !one.Prev.empty() : !Is(whole[at - 1].Text, one.Prev)) return false;
  if (at + 1 == whole.size() ? !one.Next.empty() : !Is(whole[at + 1].Text, one.Next)) return false;
  if ((one.Number != 0 && one.Number != number) || one.But == number) return false;
  if (!one.Behind.empty() && Find(whole, at + 1, one.Behind) == whole.size()) return false;
  std::size_t from = at;
  while (from > 0 && !Is(whole[from].Text, one.From)) --from;
  if (!one.From.empty() && !Is(whole[from].Text, one.From)) return false;
  return one.To.empty() || Find(whole, one.From.empty() ? 0 : from, one.To) > at;
}

/// What must come behind a failure at line `at`, in order.
std::vector<std::string> Kept(const Lines& whole, std::size_t at,
                              const std::vector<const Consequence*>& consequences) {
  std::vector<bool> lost(whole.size(), false);
  for (const Consequence* one : consequences) {
    for (const auto& [from, to] : one->Between) {
      std::string_view begin = from;
      std::string_view end = to;
      const auto cutPlus = [](std::string_view& pattern) {
        const bool plus = pattern.ends_with('+');
        if (plus) pattern.remove_suffix(1);
        return plus ? 1U : 0U;
      };
      const std::size_t first = 1 - cutPlus(begin);
      const std::size_t behind = cutPlus(end);
      std::size_t line = begin.empty() ? at + 1 : Find(whole, at + 1, begin) + first;
      std::size_t last = end.empty() ? whole.size() : Find(whole, line, end);
      if (!end.empty()) last = last == whole.size() ? line : last + behind;
      for (; line < last; ++line) lost[line] = true;
    }
    for (std::size_t line = at + 1; line < whole.size(); ++line) {
      if (IsOneOf(whole[line].Text, one->Lost)) lost[line] = true;
    }
  }
  std::vector<std::string> kept;
  for (std::size_t line = at + 1; line < whole.size(); ++line) {
    if (!lost[line]) kept.push_back(whole[line].Text);
  }
  return kept;
}

}  // namespace

std::vector<const Consequence*> ConsequencesOf(const Lines& whole, std::size_t at,
                                               std::int32_t number) {
  std::vector<const Consequence*> found;
  for (const Consequence& one : Consequences()) {
    if (Applies(one, whole, at, number)) found.push_back(&one);
  }
  return found;
}

std::string Differences(const Lines& whole, std::size_t at, const Lines& lines,
                        const std::vector<const Consequence*>& consequences, Told told,
                        const std::string& fault) {
  for (std::size_t line = 0; line < at; ++line) {
    if (line >= lines.size() || lines[line].Text != whole[line].Text)
      return "before the failure: " + whole[line].Text;
  }
  const auto isOfTheFailure = [&](const std::string& text) {
    const auto isOrFailed = [&](const std::string& part) {
      return text == part || text.starts_with(part.substr(0, part.find(" failed: ")) + " failed: ");
    };
    return isOrFailed(whole[at].Text) || std::ranges::any_of(whole[at].Parts, isOrFailed);
  };
  const std::vector<std::string> kept = Kept(whole, at, consequences);
  std::vector<std::string_view> instead;
  for (const Consequence* one : consequences)
    instead.insert(instead.end(), one->Instead.begin(), one->Instead.end());
  std::size_t next = 0;
  int entries = 0;
  std::string differences;
  bool begun = false;
  for (std::size_t line = at; line < lines.size(); ++line) {
    const std::string& text = lines[line].Text;
    if (!begun && isOfTheFailure(text)) continue;
    if (next < kept.size() && text == kept[next]) {
      ++next;
    } else if (told == Told::Log && entries == 0 && text.starts_with("log //~") &&
               Contains(text, fault)) {
      // The entry is the next thing that happens.
      if (begun) differences += "  late: " + text + "\n";
      ++entries;
    } else {
      const auto named = std::ranges::find_if(
          instead, [&](std::string_view pattern) { return Is(text, pattern); });
      if (named != instead.end()) {
        instead.erase(named);
      } else if (std::ranges::none_of(consequences, [&](const Consequence* one) {
                   return IsOneOf(text, one->Maybe);
                 })) {
        differences += "  instead: " + text + "\n";
      }
    }
    begun = true;
  }
  for (const std::string_view pattern : instead)
    differences += "  not: " + std::string(pattern) + "\n";
  for (; next < kept.size(); ++next) differences += "  lost: " + kept[next] + "\n";
  if (entries != (told == Told::Log ? 1 : 0))
    differences += "  entries: " + std::to_string(entries) + "\n";
  return differences.substr(0, 2000);
}

}  // namespace talu
