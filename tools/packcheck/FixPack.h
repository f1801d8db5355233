#pragma once

#include <filesystem>
#include <functional>
#include <string>

#include "CheckPack.h"
#include "ConvertFile.h"

namespace talu::packcheck {

/// What becomes of a file of a pack; its path is relative to the pack folder, with backslashes.
using MendFile = std::function<ConvertedFile(const std::string& path, FileKind kind)>;

/// Gives AppCfg.txt and every script that it lists to `mend`, in the order of the build, and puts
/// what comes of them into `pack`, whose files on the host stay as they are.
void MendPack(CheckedPack& pack, const MendFile& mend);

/// Marks the findings that `packcheck fix` mends: `pack` has been checked, and `check` checks
/// another one.
void MarkMended(CheckedPack& pack, const std::filesystem::path& folder, int codePage,
                const std::function<void(CheckedPack&)>& check);

}  // namespace talu::packcheck
