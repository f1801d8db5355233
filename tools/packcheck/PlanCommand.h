#pragma once

#include <filesystem>
#include <iosfwd>

#include "Plan.h"

namespace talu::packcheck {

struct PlanCommandOptions {
  PlanOptions Run;
  /// The journal, one JSON object per line, instead of the account.
  bool Json = false;
  /// How many of a kind that succeed the account shows of a page; it counts the others.
  int Listed = 100;
  /// A new or empty host folder for the machine's drives at the end, one folder per drive, without
  /// the pack. Empty: they are not saved.
  std::filesystem::path Save = {};
  /// A host folder that is C: of a machine after the same installation: what differs is told in
  /// place of the account. Empty: nothing is compared.
  std::filesystem::path Compare = {};
  /// At the end the installation is taken back, and with it the databases.
  bool TakeBack = false;
  bool DropDatabases = false;
};

/// Plans an installation and describes it on `out`, in UTF-8, as it runs. Returns 0 when it reached
/// Finish and nothing failed, 1 when the wizard stopped before or something is reported as failed;
/// 1 too when it is to be taken back and something is left; of a comparison 0 when all is as
/// planned, 1 otherwise. Raises std::runtime_error with a line for the user when it cannot be
/// planned or saved.
int PlanCommand(const PlanCommandOptions& options, std::ostream& out);

}  // namespace talu::packcheck
