#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "Installation.h"

namespace talu {

/// What the machine was asked in one run of the wizard, and what else it noticed, as lines: events,
/// requests that leave none, files closed, pending events let through. What always comes together
/// is one line: "config" is the configuration read, "log" and "record" are an entry and a record,
/// written to the file that is closed and opened again for it.
struct Trace {
  struct Line {
    std::string Text;
    /// The lines that it stands for, none when it is one itself.
    std::vector<std::string> Parts;
    /// The number of the last request in it, 0 without one.
    int Request = 0;
  };

  /// Runs `run` on and gathers the lines, with request `fault` (from 1; 0 is none) failing. The
  /// description of the fault is the same word whatever the error.
  static Trace Of(Installation& run, int fault, const RuntimeError& error, int bound);

  std::vector<Line> Lines;
  /// A sum over all that was gathered, how far the bar goes included.
  std::uint64_t Digest = 0;
  /// The kind of each request.
  std::vector<std::string> Requests;

  /// The line in which a request stands.
  std::size_t At(int request) const;
};

}  // namespace talu
