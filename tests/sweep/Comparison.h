#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "Consequences.h"
#include "Trace.h"

namespace talu {

/// Those that a failure at line `at` of the whole run has.
std::vector<const Consequence*> ConsequencesOf(const std::vector<Trace::Line>& whole,
                                               std::size_t at, std::int32_t number);

/// What `lines`, the run with a failure at line `at`, has lost or has instead without a consequence
/// that says so, one line each; empty when it is as it must be. The entry that tells of the failure
/// holds the text `fault` and must be the next thing that happens, where it is told in the log.
std::string Differences(const std::vector<Trace::Line>& whole, std::size_t at,
                        const std::vector<Trace::Line>& lines,
                        const std::vector<const Consequence*>& consequences, Told told,
                        const std::string& fault);

}  // namespace talu
