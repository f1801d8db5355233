// A library that has no business in any process: where it is loaded it leaves, in C:\Planted, an
// empty file of the name "PROGRAM LIBRARY".

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

}  // namespace

extern "C" BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, void*) {
  if (reason != DLL_PROCESS_ATTACH) return TRUE;
  char mark[3 * MAX_PATH];
  std::snprintf(mark, sizeof mark, "C:\\Planted\\%s %s", FileName(nullptr).Text,
                FileName(module).Text);
  const HANDLE file = CreateFileA(mark, GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
  if (file != INVALID_HANDLE_VALUE) CloseHandle(file);
  return TRUE;
}
