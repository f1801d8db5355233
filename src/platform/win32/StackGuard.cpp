// What the compiler's stack protector needs from a program. The compiler's own library would fill
// the guard from the system's cryptography, for which Windows loads libraries, and Wine a dozen, at
// every start; Visual Studio's library does the same as this one.

#ifndef _MSC_VER

#include <cstdint>
#include <initializer_list>

#include "platform/win32/Windows.h"

// NOLINTBEGIN(bugprone-reserved-identifier,readability-identifier-naming): the compiler's names
extern "C" {

std::uintptr_t __stack_chk_guard = 0xBB40E64E;

// Neither the stack nor what is registered on it can be relied on: Windows ends the process at once
// and runs no handler of its own; before Windows 8 this is a fault like any other.
[[noreturn]] void __stack_chk_fail() {
  __asm__ volatile("int $0x29" : : "c"(FAST_FAIL_STACK_COOKIE_CHECK_FAILURE));
  __builtin_unreachable();
}

}  // extern "C"

namespace {

// Nobody who sends a text from outside can know all of these. The functions that run while the
// guard changes are the start-up code's, which do not use it.
[[gnu::constructor(101), gnu::no_stack_protector]] void ChooseGuard() {
  FILETIME time;
  GetSystemTimeAsFileTime(&time);
  LARGE_INTEGER counter;
  QueryPerformanceCounter(&counter);
  std::uint64_t guard = reinterpret_cast<std::uintptr_t>(&time);
  for (const std::uint64_t part :
       {std::uint64_t{time.dwHighDateTime} << 32 | time.dwLowDateTime,
        static_cast<std::uint64_t>(counter.QuadPart), std::uint64_t{GetCurrentProcessId()},
        std::uint64_t{GetCurrentThreadId()},
        std::uint64_t{reinterpret_cast<std::uintptr_t>(&__stack_chk_guard)}}) {
    guard = (guard ^ part) * 0x9E3779B97F4A7C15;
    guard ^= guard >> 29;
  }
  __stack_chk_guard = static_cast<std::uintptr_t>(guard >> 32);
}

}  // namespace
// NOLINTEND(bugprone-reserved-identifier,readability-identifier-naming)

#endif
