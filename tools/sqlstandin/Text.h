#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace talu::standin {

/// UTF-16 (little-endian bytes, as on the wire) as UTF-8. A surrogate without its partner is kept
/// as three bytes, so that nothing a client sends is lost; an odd last byte is dropped.
std::string Utf8FromUtf16(std::string_view bytes);

/// Appends UTF-8 to `bytes` as UTF-16, little-endian; a byte that is no UTF-8 becomes U+FFFD.
void AppendUtf16(std::string& bytes, std::string_view utf8);

/// The first `most` UTF-16 units of a text; a pair of surrogates is not torn apart.
std::string_view FirstUnits(std::string_view utf8, std::size_t most);

/// The length of a text in UTF-16 units, which is how the server counts characters.
std::size_t CountUnits(std::string_view utf8);

/// A name in the form in which two spellings that differ in case only are equal: the server's
/// default collation ignores case.
std::string FoldName(std::string_view utf8);

/// Whether two names are the same to the default collation.
bool SameName(std::string_view left, std::string_view right);

/// Whether two texts are equal but for the case of the letters A to Z.
bool SameWord(std::string_view left, std::string_view right);

}  // namespace talu::standin
