#pragma once

#include <string>
#include <string_view>

namespace talu {

class ErrorTrap;
class TextFiles;

/// The directives of a script, upper-cased. A line that contains one anywhere, in any case, is one.
inline constexpr std::string_view kBatchDirective = "--TALUGO";
inline constexpr std::string_view kLineDirective = "--TALULINEBYLINE";

/// Whether there is more to read under `number`: the condition of a reading loop. An error of the
/// test goes to the trap and ends the loop; a file that could not be opened has nothing to read.
bool MoreToRead(const ErrorTrap& step, TextFiles& files, int number);

/// Opens `path` for input under a free number and puts that into `number`; 0 stays when it cannot
/// be opened, after one error for the trap.
void OpenForReading(const ErrorTrap& step, TextFiles& files, const std::string& path, int& number);

}  // namespace talu
