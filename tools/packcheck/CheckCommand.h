#pragma once

#include <filesystem>
#include <iosfwd>
#include <string>

namespace talu::packcheck {

class CheckedPack;
class Findings;

struct CheckOptions {
  /// The pack folder.
  std::filesystem::path Pack;
  /// That of the machine that it will be installed on.
  int CodePage = 1252;
  /// One JSON object per line instead of text for people.
  bool Json = false;
};

/// Checks a pack and writes the findings to `out`, in UTF-8. Returns the exit status: 0 when the
/// pack is clean (apart from notes and accepted findings), 1 with warnings, 2 with errors. Raises
/// std::exception, with a line for the user, when the pack cannot be read.
int CheckCommand(const CheckOptions& options, std::ostream& out);

/// Checks a pack; its findings are in order then. Raises std::runtime_error, with a line for the
/// user, for a file that cannot be read.
void CheckEverything(CheckedPack& pack);

/// How many findings of each weight there are: "2 errors, 1 warning, 0 notes".
std::string CountFindings(const Findings& findings);

/// Writes what the finding `code` means, in Markdown; all of them for "all". Raises
/// std::runtime_error with a line for the user when there is no such code.
void ExplainCommand(const std::string& code, std::ostream& out);

}  // namespace talu::packcheck
