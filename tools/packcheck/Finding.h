#pragma once

#include <initializer_list>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

#include "Rules.h"

namespace talu::packcheck {

/// Where a finding stands. Texts are in the ANSI code page, as in the pack.
struct Place {
  /// The file, below the pack folder, with backslashes.
  std::string File;
  /// From 1; 0 for the file as a whole.
  int Line = 0;
  /// The line itself, or what else an author may name it by.
  std::string Text;
};

/// One thing in a pack that is likely not meant.
struct Finding {
  const packcheck::Rule* Rule = nullptr;
  packcheck::Place Place;
  std::string Will;
  std::string Do;
  /// How many more of its kind the file has, which are not listed one by one.
  int More = 0;
  /// The author's reason for leaving it so; empty when it is not accepted.
  std::string Accepted;

  /// The finding for a terminal, in UTF-8.
  std::string ToText() const;
  /// One JSON object on one line.
  std::string ToJson() const;
};

/// The findings of a pack. Of each kind a file has at most twenty listed; the last one tells how
/// many more there are.
class Findings {
 public:
  /// Adds a finding of the rule with this code. `arguments` take the places of the rule's texts;
  /// they are shown as they are, so pack texts go through `Shown` first. The same kind twice at the
  /// same place counts once.
  void Add(KnownRule code, const Place& place, std::initializer_list<std::string> arguments = {});

  /// In the order of files and lines once `Sort` was called.
  std::vector<Finding>& All() { return findings_; }
  const std::vector<Finding>& All() const { return findings_; }
  void Sort();

 private:
  std::vector<Finding> findings_;
  std::map<std::pair<std::string, std::string_view>, std::vector<std::size_t>> byFileAndCode_;
  std::set<std::tuple<std::string, int, std::string_view, std::string>> seen_;
};

/// A text of the pack as a finding shows it: in quotes, line ends visible, long ones cut.
std::string Shown(std::string_view text);

}  // namespace talu::packcheck
