#pragma once

#include <string>
#include <vector>

#include "takeback/TakeBackPlan.h"

namespace talu {

/// What becomes of the steps, for a label: lines divided by carriage returns. What is left, which
/// wants somebody to do something, comes first, with the reason; then what goes, to begin with how
/// many files and folders, which may be thousands; then what stays. `verdicts` may be fewer than
/// `steps`: of the others nothing is told. `goes` is the heading over what goes.
std::string PlanText(const std::vector<Step>& steps, const std::vector<Verdict>& verdicts,
                     const std::string& goes);

}  // namespace talu
