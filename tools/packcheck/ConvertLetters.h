#pragma once

#include <string_view>
#include <vector>

#include "ConvertEdits.h"
#include "ConvertText.h"

namespace talu::packcheck {

/// Writes letters that the code page lacks as NCHAR(n), in N'...' among the values of INSERT ...
/// VALUES, where an expression means the same. `missing` are the letters; the edits are in order.
std::vector<Edit> LetterEdits(std::string_view text, const std::vector<MissingLetter>& missing);

}  // namespace talu::packcheck
