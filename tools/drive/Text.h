#pragma once

#include <string>
#include <string_view>

namespace talu::drive {

// Inside drive every text is UTF-8; the wide form exists only at the platform's calls.

std::wstring Wide(std::string_view text);
std::string Utf8(std::wstring_view text);

/// The bytes of a script as UTF-8: unchanged when they are valid UTF-8 (without a byte order mark),
/// else converted from the ANSI code page.
std::string DecodeFile(const std::string& bytes);

/// CR, CR LF and LF all become LF: line ends depend on the window, not on the script.
std::string PlainLineEnds(std::string_view text);

/// The text in double quotes, on one line, as in a script.
std::string Quoted(std::string_view text);

/// Writes one line at once, in Unicode to the console, in UTF-8 to a file or pipe.
void PrintLine(std::string_view text);
void PrintError(std::string_view text);

}  // namespace talu::drive
