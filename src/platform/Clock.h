#pragma once

namespace talu {

/// Local date and time: month and day from 1, hour 0 to 23.
struct DateTime {
  int Year = 2000;
  int Month = 1;
  int Day = 1;
  int Hour = 0;
  int Minute = 0;
};

class Clock {
 public:
  virtual ~Clock() = default;
  virtual DateTime Now() = 0;
};

}  // namespace talu
