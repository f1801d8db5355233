#pragma once

#include "platform/win32/Windows.h"

namespace talu {

/// How long one kind of call is repeated that meets a lock. Virus scanners and indexers hold new
/// files for a moment. Where many such calls fail one after the other it is no moment: each in vain
/// halves the patience with the next, and a success restores it.
class Patience {
 public:
  /// Whether to try once more, after a wait. `begin` is the time of the first try, by
  /// GetTickCount64, `reason` the system's error of the last one, which stays the thread's last
  /// error.
  bool Wait(ULONGLONG begin, DWORD reason);
  void Succeeded() { left_ = kFull; }

 private:
  static constexpr DWORD kFull = 500;  // milliseconds
  DWORD left_ = kFull;
};

/// Calls `attempt`, which returns whether it succeeded, until it does or fails for good. Returns
/// whether it did; the thread's last error then says why not. Each place in the code that calls
/// this has a patience of its own.
template <class Attempt>
bool TryWhileLocked(Attempt&& attempt) {
  static Patience patience;
  const ULONGLONG begin = GetTickCount64();
  do {
    if (!attempt()) continue;
    patience.Succeeded();
    return true;
  } while (patience.Wait(begin, GetLastError()));
  return false;
}

}  // namespace talu
