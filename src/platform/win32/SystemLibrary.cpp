#include "platform/win32/SystemLibrary.h"

#include <initializer_list>

namespace talu {
namespace {

/// Loads a library of the system folder, and what it imports from there too; nullptr without it.
HMODULE LoadSystemLibrary(const char* library) {
  const std::string folder = SystemFolder();
  if (folder.empty()) return nullptr;
  const std::string path = folder + "\\" + library;
  return LoadLibraryExA(path.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
}

void LoadSystemLibraries(std::initializer_list<const char*> libraries) {
  for (const char* library : libraries) LoadSystemLibrary(library);
}

}  // namespace

std::string SystemFolder() {
  char folder[MAX_PATH];
  const UINT length = GetSystemDirectoryA(folder, MAX_PATH);
  return length < MAX_PATH ? std::string(folder, length) : std::string();
}

FARPROC FindSystemFunction(const char* library, const char* function) {
  const HMODULE module = LoadSystemLibrary(library);
  return module != nullptr ? GetProcAddress(module, function) : nullptr;
}

void TrustSystemFolderOnly() {
  SetDllDirectoryA("");
  // Windows 7 has this function only with an update.
  using Function = BOOL(WINAPI*)(DWORD);
  const auto setDirectories = SystemFunction<Function>("kernel32.dll", "SetDefaultDllDirectories");
  if (setDirectories != nullptr) setDirectories(LOAD_LIBRARY_SEARCH_SYSTEM32);
  // The system's own libraries ask for some by name, and Windows 7 without the update and Wine's
  // late imports would still look beside the program. What is in the process already is not looked
  // for.
  LoadSystemLibraries({"cryptbase.dll", "dwmapi.dll", "msimg32.dll", "uxtheme.dll", "version.dll"});
  if (setDirectories == nullptr) LoadWhatIsAskedForLater();
}

// What the system itself asks for as it starts a program is here already.
UsualLibrarySearch::UsualLibrarySearch() {
  LoadSystemLibrary("apphelp.dll");
  SetDllDirectoryA(nullptr);
}

UsualLibrarySearch::~UsualLibrarySearch() {
  SetDllDirectoryA("");
}

void LoadWhatIsAskedForLater() {
  LoadSystemLibraries({"bcrypt.dll", "crypt32.dll", "propsys.dll"});
}

}  // namespace talu
