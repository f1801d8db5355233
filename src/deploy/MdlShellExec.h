#pragma once

#include <cstdint>
#include <string>

namespace talu {

class InstallContext;

/// Runs a command line and waits until it ends, however long that takes. Returns its exit code, -1
/// when it cannot be started.
std::int32_t ExecCmd(InstallContext& install, const std::string& commandLine);

}  // namespace talu
