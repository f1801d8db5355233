// A program like Setup.exe to Windows, with its imports and its manifest: prints the libraries that
// are there before its first statement, then loads those it is told to. With "wary" as the first
// argument it guards itself before as Setup.exe does.
//
//   bait [wary] [LIBRARY...]

#include <cstdio>
#include <cstring>

#include "platform/win32/SystemLibrary.h"

// Not before windows.h.
#include <psapi.h>

namespace {

bool IsWary() {
  return std::strstr(GetCommandLineA(), " wary") != nullptr;
}

[[gnu::constructor(101)]] void BeforeAnythingElse() {
  if (IsWary()) talu::TrustSystemFolderOnly();
}

}  // namespace

int main(int count, char** arguments) {
  if (IsWary()) talu::LoadWhatIsAskedForLater();
  HMODULE modules[500];
  DWORD size = 0;
  K32EnumProcessModules(GetCurrentProcess(), modules, sizeof modules, &size);
  for (DWORD at = 1; at < size / sizeof modules[0]; ++at) {
    char name[MAX_PATH] = "";
    K32GetModuleBaseNameA(GetCurrentProcess(), modules[at], name, MAX_PATH);
    std::puts(name);
  }
  for (int at = IsWary() ? 2 : 1; at < count; ++at) LoadLibraryA(arguments[at]);
}
