#pragma once

#include <cstddef>
#include <vector>

#include "runtime/RuntimeError.h"

namespace talu {

/// What the simulated server refuses of a batch.
struct Refusal {
  /// A database or a login is there already, or is not there; all else is refused on any server.
  enum class Reason { Exists, Missing, Certain };

  Reason Why;
  /// Where in the batch, in bytes.
  std::size_t At;
  /// The provider's error, with the server's text.
  RuntimeError Error;
};

/// Takes the refusals of a batch, in order: raises the first, or keeps all.
class Refusals {
 public:
  explicit Refusals(bool keeps) : keeps_(keeps) {}

  void Add(Refusal::Reason why, std::size_t at, const RuntimeError& error) {
    if (!keeps_) throw RuntimeError(error);
    All.push_back({why, at, error});
  }

  std::vector<Refusal> All;

 private:
  bool keeps_;
};

}  // namespace talu
