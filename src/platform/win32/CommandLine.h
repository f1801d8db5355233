#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/win32/Windows.h"

namespace talu {

/// The arguments that the program was started with, without its own name.
std::vector<std::string> ProgramArguments();

std::optional<std::string> EnvironmentVariable(const std::string& name);

/// Where a program with windows writes when it is started by a command: what it was given for it, a
/// file or another program's input, else the console of the one that started it, else nowhere.
class CommandOutput {
 public:
  /// `which` is STD_OUTPUT_HANDLE or STD_ERROR_HANDLE.
  explicit CommandOutput(DWORD which);
  CommandOutput(const CommandOutput&) = delete;
  CommandOutput& operator=(const CommandOutput&) = delete;

  /// Writes a line and its end: UTF-8 and a line feed, to a console its characters.
  void WriteLine(std::string_view line);
  /// Whether something did not get there.
  bool Failed() const { return failed_; }

 private:
  HANDLE handle_ = nullptr;
  bool console_ = false;
  bool failed_ = false;
};

}  // namespace talu
