#include "platform/win32/WhileLocked.h"

namespace talu {
namespace {

constexpr DWORD step = 20;  // milliseconds

}  // namespace

DWORD Patience::left_ = Full;

bool Patience::Wait(DWORD reason) {
  // A file that is being deleted denies the access until the last one has let go of it.
  const bool locked = reason == ERROR_SHARING_VIOLATION || reason == ERROR_ACCESS_DENIED;
  const bool more = locked && GetTickCount64() - begin_ < left_;
  if (more) {
    Sleep(step);
  } else if (locked) {
    left_ /= 2;
  }
  SetLastError(reason);
  return more;
}

}  // namespace talu
