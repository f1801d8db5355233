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

/// The place of a finding.
struct Place {
  /// The file, relative to the pack folder, with backslashes.
  std::string File;
  /// From 1; 0 for the file as a whole.
  int Line = 0;
  /// The line itself, or another text by which an author may name it.
  std::string Text;
};

/// Something in a pack that is probably not intended.
struct Finding {
  const packcheck::Rule* Rule = nullptr;
  packcheck::Place Place;
  std::string Will;
  std::string Do;
  /// How many more of its kind the file has that are not listed.
  int More = 0;
  /// The author's reason to leave it so; empty when it is not accepted.
  std::string Accepted;
  /// Whether `packcheck fix` mends it.
  bool Mended = false;

  /// The finding for a terminal, in UTF-8.
  std::string ToText() const;
  /// One JSON object on one line.
  std::string ToJson() const;
};

/// The findings of a pack. At most twenty of a kind are listed for a file, and of notes that say
/// the same the first; the last one says how many more there are.
class Findings {
 public:
  /// Adds a finding of the rule with this code. `arguments` fill the places in the rule's texts and
  /// are shown unchanged, so pass pack texts through `Shown` first. A second finding of the same
  /// kind at the same place is ignored.
  void Add(KnownRule code, const Place& place, std::initializer_list<std::string> arguments = {});

  /// In order of files and lines after `Sort`.
  std::vector<Finding>& All() { return findings_; }
  const std::vector<Finding>& All() const { return findings_; }
  void Sort();

 private:
  std::vector<Finding> findings_;
  std::map<std::tuple<std::string, std::string_view, std::string>, std::vector<std::size_t>>
      byFileAndCode_;
  std::set<std::tuple<std::string, int, std::string_view, std::string>> seen_;
};

/// A text of the pack as shown in a finding: in quotes, line ends visible, long texts cut.
std::string Shown(std::string_view text);

}  // namespace talu::packcheck
