#pragma once

#include <string>
#include <vector>

namespace talu::packcheck {

/// The program's arguments in UTF-8, last one first, as CLI11 takes them. Sees to it, too, that a
/// console shows UTF-8.
std::vector<std::string> Utf8Arguments(int count, char** arguments);

/// Keeps the numbers of standard input, output and error from files that are opened later, where
/// one of the three is closed. What is written there then fails; std::cout has failed already.
void HoldStandardFiles();

}  // namespace talu::packcheck
