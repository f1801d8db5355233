// A library that has no business in any process, and a program that nobody should start: where it
// is loaded it leaves, in C:\Planted, an empty file of the name "PROGRAM LIBRARY"; "PROGRAM
// PROGRAM" when it is started.

#include <windows.h>

#include <cstdio>
#include <cstring>

namespace {

struct FileName {
  char Path[MAX_PATH] = "";
  const char* Text;
  explicit FileName(HMODULE module) {
    GetModuleFileNameA(module, Path, MAX_PATH);
    const char* slash = std::strrchr(Path, '\\');
    Text = slash != nullptr ? slash + 1 : Path;
  }
};

void LeaveMark(HMODULE module) {
  char mark[3 * MAX_PATH];
  std::snprintf(mark, sizeof mark, "C:\\Planted\\%s %s", FileName(nullptr).Text,
                FileName(module).Text);
  const HANDLE file = CreateFileA(mark, GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
  if (file != INVALID_HANDLE_VALUE) CloseHandle(file);
}

}  // namespace

extern "C" BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, void*) {
  if (reason == DLL_PROCESS_ATTACH) LeaveMark(module);
  return TRUE;
}

int main() {
  LeaveMark(nullptr);
}
