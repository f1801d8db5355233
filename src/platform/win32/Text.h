#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace talu {

/// A text, which is UTF-8, to UTF-16.
std::wstring Wide(std::string_view text);

/// UTF-16 to a text.
std::string Narrow(std::wstring_view text);

/// Whether the full path of `path` has fewer than `limit` characters. Windows' functions refuse a
/// longer one by themselves, Wine's wide ones take it.
bool IsShorterThan(std::string_view path, std::uint32_t limit);

/// Windows' text for a system error code or an HRESULT, without a line end; "Automation error" when
/// there is none.
std::string SystemMessage(std::int32_t code);

}  // namespace talu
