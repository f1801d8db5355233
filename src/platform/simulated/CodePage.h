#pragma once

#include <string>
#include <string_view>

namespace talu {

/// The Unicode character of a Windows-1252 byte.
char32_t UnicodeOf(char ansi);

/// Windows-1252 to UTF-8 and back; characters that the other lacks become "?".
std::string Utf8FromAnsi(std::string_view text);
std::string AnsiFromUtf8(std::string_view text);

/// Appends a character in UTF-8.
void AppendUtf8(std::string& text, char32_t character);

}  // namespace talu
