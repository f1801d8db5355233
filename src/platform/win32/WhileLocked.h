#pragma once

#include "platform/win32/Windows.h"

namespace talu {

/// How long a call is repeated that meets a lock. Virus scanners and indexers hold new files for a
/// moment. Where many calls fail one after the other it is no moment: each in vain halves the
/// patience with the next, and a success gives it back.
class Patience {
 public:
  static constexpr DWORD Full = 500;  // milliseconds

  /// Whether to try once more, after a wait. `reason` is the system's error of the call that has
  /// failed, which stays the thread's last error.
  bool Wait(DWORD reason);
  static void Succeeded() { left_ = Full; }

 private:
  static DWORD left_;
  ULONGLONG begin_ = GetTickCount64();
};

/// Calls `attempt`, which returns whether it succeeded, until it does or fails for good. Returns
/// whether it did; the thread's last error then says why not.
template <class Attempt>
bool TryWhileLocked(Attempt&& attempt) {
  if (attempt()) {
    Patience::Succeeded();
    return true;
  }
  for (Patience patience; patience.Wait(GetLastError());) {
    if (!attempt()) continue;
    Patience::Succeeded();
    return true;
  }
  return false;
}

}  // namespace talu
