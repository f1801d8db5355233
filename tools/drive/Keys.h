#pragma once

#include <optional>
#include <string_view>
#include <vector>

namespace talu::drive {

/// Virtual-key codes held down together: the modifiers first, the key itself last.
using Chord = std::vector<unsigned short>;

/// Reads "TAB", "ALT+N", "CTRL+SHIFT+HOME", "7", in any case; nothing when a part is not a key.
std::optional<Chord> ReadChord(std::string_view text);

}  // namespace talu::drive
