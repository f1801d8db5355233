#include "platform/win32/Win32Clock.h"

#include "platform/win32/Windows.h"

namespace talu {

DateTime Win32Clock::Now() {
  SYSTEMTIME now;
  GetLocalTime(&now);
  return {now.wYear, now.wMonth, now.wDay, now.wHour, now.wMinute};
}

}  // namespace talu
