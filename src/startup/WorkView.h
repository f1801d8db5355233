#pragma once

#include "forms/Controls.h"
#include "forms/PageLayout.h"
#include "runtime/Int16.h"

namespace talu {

/// What a page shows of the work done on it. The steps know no page.
struct WorkView {
  Label& Status;
  Shape& Bar;
  Label& Note;
  CommandButton& Next;
};

/// The width in twips for `percent` of the wizard's work, halves rounded to even.
inline Int16 ProgressShare(double percent) {
  return RoundToInt16(kProgressWidth / 100.0 * percent);
}

}  // namespace talu
