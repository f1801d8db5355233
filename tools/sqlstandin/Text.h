#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace talu::standin {

/// Converts UTF-16 (little-endian bytes, as in the protocol) to UTF-8. An unpaired surrogate is
/// kept as three bytes, so that nothing a client sends is lost; an odd last byte is dropped.
std::string Utf8FromUtf16(std::string_view bytes);

/// Appends UTF-8 to `bytes` as UTF-16, little-endian; a byte that is not UTF-8 becomes U+FFFD.
void AppendUtf16(std::string& bytes, std::string_view utf8);

/// The first `most` UTF-16 units of a text; never splits a surrogate pair.
std::string_view FirstUnits(std::string_view utf8, std::size_t most);

/// A name in a form in which two spellings that differ only in case are equal: the server's default
/// collation ignores case.
std::string FoldName(std::string_view utf8);

/// Whether two names are equal in the default collation.
bool SameName(std::string_view left, std::string_view right);

/// Whether two texts are equal except for the case of the letters A to Z.
bool SameWord(std::string_view left, std::string_view right);

}  // namespace talu::standin
