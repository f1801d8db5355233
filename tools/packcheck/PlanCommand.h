#pragma once

#include <filesystem>
#include <iosfwd>

#include "Plan.h"

namespace talu::packcheck {

struct PlanCommandOptions {
  PlanOptions Run;
  /// The journal, one JSON object a line, in place of the account.
  bool Json = false;
  /// A new or empty host folder for the machine's drives at the end, one folder a drive, without
  /// the pack. Empty: they are not saved.
  std::filesystem::path Save;
};

/// Plans an installation and tells about it on `out`, in UTF-8, as it goes. Returns 0 when it came
/// to Finish and nothing failed, 1 when the wizard stopped before or something is told as failed.
/// Raises std::runtime_error with a line for the user when it cannot be planned or saved.
int PlanCommand(const PlanCommandOptions& options, std::ostream& out);

}  // namespace talu::packcheck
