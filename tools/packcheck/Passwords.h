#pragma once

#include <string>

namespace talu::packcheck {

/// The text with "***" in place of the passwords that its form gives away: in connection texts and
/// data sources (PWD=...) and in the records of credentials and data sources.
std::string WithoutPasswords(std::string text);

/// What stands for a password.
inline constexpr const char* kHiddenPassword = "***";

}  // namespace talu::packcheck
