#pragma once

#include <string>
#include <string_view>

namespace talu {

/// Appends the text to `json` as a JSON string, in quotes. What is no character becomes U+FFFD.
void AppendJson(std::string& json, std::string_view text);

}  // namespace talu
