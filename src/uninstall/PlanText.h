#pragma once

#include <string>
#include <vector>

#include "takeback/TakeBackPlan.h"

namespace talu {

/// What becomes of the steps, for a label: lines divided by carriage returns. What goes comes
/// first, to begin with how many files and folders, which may be thousands; then what is left and
/// what stays, each with the reason. `verdicts` may be fewer than `steps`: of the others nothing is
/// told. `goes` is the heading of the first part.
std::string PlanText(const std::vector<Step>& steps, const std::vector<Verdict>& verdicts,
                     const std::string& goes);

}  // namespace talu
