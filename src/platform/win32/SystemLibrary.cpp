#include "platform/win32/SystemLibrary.h"

#include <string>

namespace talu {

FARPROC FindSystemFunction(const char* library, const char* function) {
  char folder[MAX_PATH];
  const UINT length = GetSystemDirectoryA(folder, MAX_PATH);
  if (length == 0 || length >= MAX_PATH) return nullptr;
  const HMODULE module = LoadLibraryA((std::string(folder) + "\\" + library).c_str());
  return module != nullptr ? GetProcAddress(module, function) : nullptr;
}

void TrustSystemFolderOnly() {
  SetDllDirectoryA("");
  // Windows 7 has this function only with an update.
  using Function = BOOL(WINAPI*)(DWORD);
  const auto setDirectories = SystemFunction<Function>("kernel32.dll", "SetDefaultDllDirectories");
  if (setDirectories != nullptr) setDirectories(LOAD_LIBRARY_SEARCH_SYSTEM32);
}

}  // namespace talu
