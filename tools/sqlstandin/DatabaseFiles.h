#pragma once

#include <filesystem>

#include "Catalogue.h"

namespace talu::standin {

/// Makes the files of a new database: SQLite's at the path of the primary data file, small
/// placeholders for the others. Without paths they go to `dataFolder`. When one cannot be made
/// (5133, 5170, 5123, each with 1802) none is left.
DatabaseEntry MakeDatabaseFiles(const CreateDatabase& statement, const Drives& drives,
                                const std::filesystem::path& dataFolder);

/// Whether a file is one of the database's own, SQLite's at its side too.
bool IsFileOf(const DatabaseEntry& entry, const std::filesystem::path& file);

/// What Windows would say of this machine's error: "5(Access is denied.)".
std::string SystemError(int error);

/// Deletes a database's files; one that is gone already is passed over.
void RemoveDatabaseFiles(const DatabaseEntry& entry);

}  // namespace talu::standin
