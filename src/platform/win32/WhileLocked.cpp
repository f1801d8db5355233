#include "platform/win32/WhileLocked.h"

namespace talu {
namespace {

constexpr DWORD kPause = 20;  // milliseconds

}  // namespace

bool Patience::Wait(ULONGLONG begin, DWORD reason) {
  // A file that is being deleted denies access until its last handle is closed.
  const bool locked = reason == ERROR_SHARING_VIOLATION || reason == ERROR_ACCESS_DENIED;
  const bool more = locked && GetTickCount64() - begin < left_;
  if (more) {
    Sleep(kPause);
  } else if (locked) {
    left_ /= 2;
  }
  SetLastError(reason);
  return more;
}

}  // namespace talu
