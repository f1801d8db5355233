#pragma once

#include "CheckPack.h"

namespace talu::packcheck {

/// Marks the findings that the author accepts in the pack's file packcheck.ignore. Each of its
/// lines is "CODE | FILE | TEXT | REASON", where TEXT is part of the finding's line, or empty.
/// Empty lines and lines that begin with "#" are skipped.
void AcceptFindings(CheckedPack& pack);

}  // namespace talu::packcheck
