#pragma once

#include <string>

namespace talu {

class InstallContext;

/// Copies with the shell's file operation; with `noConfirm` it asks nothing. Returns whether the
/// shell reported success.
bool ShellCopy(InstallContext& install, const std::string& from, const std::string& to,
               bool noConfirm);

}  // namespace talu
