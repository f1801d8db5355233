#pragma once

#include <filesystem>

#include "Catalogue.h"

namespace talu::standin {

/// Creates the files of a new database: SQLite's at the path of the primary data file, small
/// placeholders for the others; without paths, in `dataFolder`. If one cannot be created (5133,
/// 5170, 5123, each with 1802), none remains.
DatabaseEntry MakeDatabaseFiles(const CreateDatabase& statement, const Drives& drives,
                                const std::filesystem::path& dataFolder);

/// Whether a file belongs to the database, including those that SQLite keeps next to it.
bool IsFileOf(const DatabaseEntry& entry, const std::filesystem::path& file);

/// This machine's error as Windows would word it: "5(Access is denied.)".
std::string SystemError(int error);

/// Deletes a database's files; missing ones are skipped.
void RemoveDatabaseFiles(const DatabaseEntry& entry);

}  // namespace talu::standin
