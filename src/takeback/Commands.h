#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Machine.h"
#include "platform/Removal.h"

namespace talu {

/// Where the command line writes to and reads from. Texts are UTF-8; a line comes without its end.
struct CommandLineHost {
  std::function<void(std::string_view line)> Out;
  std::function<void(std::string_view line)> Error;
  /// An environment variable, or nothing.
  std::function<std::optional<std::string>(const std::string& name)> Environment;
};

/// The exit codes: all that is to go is gone (or, of `plan`, can go), something is left and the
/// next run tries it again, the command line is wrong or there is no record to go by.
inline constexpr int kTakenBack = 0;
inline constexpr int kSomethingLeft = 1;
inline constexpr int kCannotBegin = 2;

/// `plan` or `run`, with options; the arguments are without the program's name, which is `program`,
/// a file of `Machine::AppPath`. Returns the exit code.
int TakeBackCommand(const std::vector<std::string>& arguments, const Machine& machine,
                    Removal& removal, const std::string& program, const CommandLineHost& host);

}  // namespace talu
