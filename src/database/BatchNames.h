#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>

#include "runtime/TextFunctions.h"

namespace talu {

class ErrorTrap;

/// Whether the build records the database, the login that a batch creates.
inline bool CreatesDatabase(std::string_view batch) {
  return Contains(batch, "FILENAME") && Contains(batch, "CREATE DATABASE");
}
inline bool CreatesLogin(std::string_view batch) {
  return Contains(batch, "CREATE LOGIN");
}

/// The name that the build records of a batch, with the blank before it: behind CREATE and `thing`,
/// up to the next blank. Nothing when it has no end; each statement that fails is one for the trap.
std::optional<std::string> CreatedName(const ErrorTrap& step, std::string_view batch,
                                       std::string_view thing);

/// The statements whose databases the backup looks for, in its order, and whether a batch may have
/// one; most batches of data have neither word.
inline constexpr std::array<std::string_view, 4> kNamingStatements = {
    "CREATE DATABASE", "ALTER DATABASE", "DROP DATABASE", "USE "};
inline bool MayNameDatabase(std::string_view batch) {
  return Contains(batch, "DATABASE") || Contains(batch, "USE ");
}

/// The name in the batch's first `statement`; nothing without one. Raises 5 when the name has no
/// end, 6 when a position passes 32767.
std::optional<std::string> NamedDatabase(std::string_view batch, std::string_view statement);

/// The longest name that the backup takes.
inline constexpr std::size_t kLongestName = 128;

/// A name without its brackets, as the backup sends it.
std::string BackedUpName(std::string name);

}  // namespace talu
