#pragma once

#include "platform/Clock.h"

namespace talu {

/// The machine's own clock.
class Win32Clock : public Clock {
 public:
  DateTime Now() override;
};

}  // namespace talu
