#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>

#include "runtime/TextFunctions.h"

namespace talu {

class ErrorTrap;

/// Whether the build records a database or a login for this batch.
inline bool CreatesDatabase(std::string_view batch) {
  return Contains(batch, "FILENAME") && Contains(batch, "CREATE DATABASE");
}
inline bool CreatesLogin(std::string_view batch) {
  return Contains(batch, "CREATE LOGIN");
}

/// The name that the build records for a batch, with the blank before it: after CREATE and `thing`,
/// up to the next blank; nothing when it has no end. The trap gets each failing step's error.
std::optional<std::string> CreatedName(const ErrorTrap& step, std::string_view batch,
                                       std::string_view thing);

/// The folder of a batch's first data file, which the build replaces by the database folder: from
/// the first drive letter to the last backslash before ".mdf"; empty when it cannot be cut out. The
/// trap gets each failing step's error.
std::string DataFolder(const ErrorTrap& step, std::string_view batch);

/// The statements that the backup looks for, in this order, and whether a batch may contain one;
/// most batches of data contain neither word.
inline constexpr std::array<std::string_view, 4> kNamingStatements = {
    "CREATE DATABASE", "ALTER DATABASE", "DROP DATABASE", "USE "};
inline bool MayNameDatabase(std::string_view batch) {
  return Contains(batch, "DATABASE") || Contains(batch, "USE ");
}

/// The name in the batch's first `statement`, or nothing when there is none. Raises 5 when the name
/// has no end, 6 when a position exceeds 32767.
std::optional<std::string> NamedDatabase(std::string_view batch, std::string_view statement);

/// The longest name that the backup accepts.
inline constexpr Position kLongestName = 128;

/// A name without its brackets, as the backup sends it.
std::string BackedUpName(std::string name);

}  // namespace talu
