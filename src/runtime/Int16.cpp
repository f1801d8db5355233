#include "runtime/Int16.h"

#include <cmath>

namespace talu {

Int16 RoundToInt16(double value) {
  if (!(value > -40000.0 && value < 40000.0)) throw RuntimeError(error::kOverflow);
  // std::nearbyint uses the rounding mode, which nothing in the process changes from
  // to-nearest-even.
  return static_cast<std::int64_t>(std::nearbyint(value));
}

}  // namespace talu
