#pragma once

#include "CheckPack.h"

namespace talu::packcheck {

/// Marks the findings that the author accepts in the pack's file packcheck.ignore. Each line of it
/// is "CODE | FILE | TEXT | REASON": TEXT is part of the line that the finding stands in, or
/// nothing. Empty lines and those that begin with "#" are passed over.
void AcceptFindings(CheckedPack& pack);

}  // namespace talu::packcheck
