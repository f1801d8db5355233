#pragma once

#include <map>
#include <span>
#include <string>

#include "Plan.h"

namespace talu::packcheck {

/// The files of a pack with their bytes; "-" for one that is left out.
using Files = std::map<std::string, std::string>;

/// One finding, the smallest pack that shows it, and what a plan of that pack does.
struct CheckCase {
  /// All codes of the pack; the first is the one that is proved.
  const char* Codes;
  /// In place of the files of the plain pack.
  Files Pack;
  /// Part of a line of the journal, or of why the plan stopped; with "!" before it, what no line
  /// has.
  std::string Proof;
  InstallMode Mode = InstallMode::Server;
  InstallType Type = InstallType::Fresh;
};

/// A pack without any finding.
Files PlainPack();

std::span<const CheckCase> CheckCases();

}  // namespace talu::packcheck
