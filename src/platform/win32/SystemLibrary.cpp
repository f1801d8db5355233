#include "platform/win32/SystemLibrary.h"

#include <initializer_list>
#include <string>

#include "platform/win32/Text.h"

namespace talu {
namespace {

/// Loads a library of the system folder, with its imports from there too; nullptr on failure.
HMODULE LoadSystemLibrary(const char* library) {
  wchar_t folder[MAX_PATH];
  const UINT length = GetSystemDirectoryW(folder, MAX_PATH);
  if (length == 0 || length >= MAX_PATH) return nullptr;
  const std::wstring path = std::wstring(folder) + L"\\" + Wide(library);
  return LoadLibraryExW(path.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
}

void LoadSystemLibraries(std::initializer_list<const char*> libraries) {
  for (const char* library : libraries) LoadSystemLibrary(library);
}

}  // namespace

FARPROC FindSystemFunction(const char* library, const char* function) {
  const HMODULE module = LoadSystemLibrary(library);
  return module != nullptr ? GetProcAddress(module, function) : nullptr;
}

void TrustSystemFolderOnly() {
  SetDllDirectoryW(L"");
  // Windows 7 has this function only with an update.
  using Function = BOOL(WINAPI*)(DWORD);
  const auto setDirectories = SystemFunction<Function>("kernel32.dll", "SetDefaultDllDirectories");
  if (setDirectories != nullptr) setDirectories(LOAD_LIBRARY_SEARCH_SYSTEM32);
  // The system's own libraries load some by name, and Windows 7 without the update and Wine's late
  // imports would still look next to the program. A library that is already loaded is not searched
  // for.
  LoadSystemLibraries({"cryptbase.dll", "dwmapi.dll", "msimg32.dll", "uxtheme.dll", "version.dll"});
  if (setDirectories == nullptr) LoadWhatIsAskedForLater();
}

void LoadWhatIsAskedForLater() {
  LoadSystemLibraries({"bcrypt.dll", "crypt32.dll", "propsys.dll"});
}

}  // namespace talu
