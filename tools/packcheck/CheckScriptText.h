#pragma once

#include <string>

#include "CheckPack.h"

namespace talu::packcheck {

/// The text of a script as its author means it, whatever its encoding and its line ends, in UTF-8
/// with CR LF; the pack's findings say what the wizard reads instead. So what else is wrong with
/// the script is told at once.
std::string MeantText(CheckedPack& pack, std::string bytes, const std::string& file);

}  // namespace talu::packcheck
