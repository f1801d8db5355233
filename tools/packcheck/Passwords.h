#pragma once

#include <string>

namespace talu::packcheck {

/// The text with "***" for the passwords that its form reveals: in connection texts and data
/// sources (PWD=...) and in the records of credentials and data sources.
std::string WithoutPasswords(std::string text);

/// Shown instead of a password.
inline constexpr const char* kHiddenPassword = "***";

}  // namespace talu::packcheck
