#pragma once

#include <string>
#include <string_view>

namespace talu::drive {

// Inside drive every text is UTF-8; the wide form exists only at the platform's calls.

std::wstring Wide(std::string_view text);
std::string Utf8(std::wstring_view text);

/// The bytes of a script as UTF-8: taken as they are when they are valid UTF-8 (a byte order mark
/// is dropped), else read in the ANSI code page.
std::string DecodeFile(const std::string& bytes);

/// CR, CR LF and LF all become LF: how a line ends is the window's affair, not the script's.
std::string PlainLineEnds(std::string_view text);

/// The text in double quotes, on one line, as it would be written in a script.
std::string Quoted(std::string_view text);

/// Writes one line at once, to the console as Unicode, to a file or pipe as UTF-8.
void PrintLine(std::string_view text);
void PrintError(std::string_view text);

}  // namespace talu::drive
