#pragma once

#include <cstdint>
#include <string>

namespace talu {

/// Starting other programs.
class Processes {
 public:
  virtual ~Processes() = default;
  /// Starts a command line (no application name, inherited handles, normal priority), waits until
  /// it ends, without handling window events, and returns its exit code; -1 when it cannot be
  /// started. Raises nothing.
  virtual std::int32_t RunAndWait(const std::string& commandLine) = 0;
  /// Starts a command line and leaves it running; `windowStyle` 2 is minimised with focus. Raises
  /// 53 when the program is not found, 5 when it cannot be started.
  virtual void Start(const std::string& commandLine, int windowStyle) = 0;
};

}  // namespace talu
