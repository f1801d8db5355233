#pragma once

#include <string>

#include "Script.h"
#include "SetupProcess.h"

namespace talu::drive {

constexpr const char* kNoAnswer = "Setup is busy and does not answer";

/// What is there instead of what `expect` wants; empty when it is met.
std::string Unmet(const SetupProcess& setup, const Step& step);

}  // namespace talu::drive
