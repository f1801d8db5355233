#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include "ConvertEdits.h"

namespace talu::packcheck {

/// Adds what has to be changed in a batch, the bytes of `text` from `begin` up to `end`, so that
/// the build and the backup cut the right names out of it: USE in a batch of its own, and CREATE
/// DATABASE, its name and what follows in one line.
void AddBatchEdits(std::string_view text, std::size_t begin, std::size_t end,
                   std::vector<Edit>& edits);

}  // namespace talu::packcheck
