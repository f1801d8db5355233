#pragma once

#include <string>
#include <vector>

namespace talu {

/// The program's arguments in UTF-8, last one first, as CLI11 takes them. Sees to it, too, that a
/// console shows UTF-8.
std::vector<std::string> Utf8Arguments(int count, char** arguments);

}  // namespace talu
