#pragma once

#include <map>
#include <string>
#include <vector>

#include "Plan.h"

namespace talu::packcheck {

/// The files of a pack with their bytes; "-" for one that is left out.
using Files = std::map<std::string, std::string>;

/// The smallest pack that shows a finding, or that has none, and what a plan of that pack does.
struct CheckCase {
  /// All codes of the pack; the first is the one that is proved.
  std::string Codes;
  /// In place of the files of the plain pack.
  Files Pack;
  /// Part of a line of the journal, or of why the plan stopped; with "!" before it, what no line
  /// has.
  std::string Proof;
  InstallMode Mode = InstallMode::Server;
  InstallType Type = InstallType::Fresh;
  /// Part of what the check prints.
  std::string Says = {};
  /// The mistake in words.
  std::string Mistake = {};
};

/// A library of Windows with these exports, which stand in the order of their bytes.
std::string Library(const std::string& exported);

/// A pack without any finding.
Files PlainPack();

/// The cases of this file, and the lines of mistakes.jsonl. Raises std::exception for a line that
/// cannot be read.
std::vector<CheckCase> CheckCases();

}  // namespace talu::packcheck
