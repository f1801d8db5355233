#pragma once

#include <string_view>

namespace talu::sql {

/// Whether a word is a keyword that is no name without brackets; in any case.
bool IsReserved(std::string_view word);
/// Whether a statement can begin with the word; in any case.
bool BeginsStatement(std::string_view word);
/// Whether a name can be written without brackets.
bool IsPlainName(std::string_view name);

}  // namespace talu::sql
