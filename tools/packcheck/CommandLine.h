#pragma once

#include <string>
#include <vector>

namespace talu::packcheck {

/// The program's arguments in UTF-8, in reverse order, as CLI11 takes them. Also makes a console
/// show UTF-8.
std::vector<std::string> Utf8Arguments(int count, char** arguments);

/// An environment variable in UTF-8. Raises std::runtime_error if there is none of that name.
std::string Utf8Environment(const std::string& name);

/// If standard input, output or error is closed, keeps its number from files that are opened later.
/// Writing to it then fails; std::cout has failed already.
void HoldStandardFiles();

}  // namespace talu::packcheck
