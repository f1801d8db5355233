#include "platform/win32/SystemLibrary.h"

#include <initializer_list>

namespace talu {
namespace {

/// Loads a library of the system folder, with its imports from there too; nullptr on failure.
HMODULE LoadSystemLibrary(const wchar_t* library) {
  const std::wstring folder = SystemFolder();
  if (folder.empty()) return nullptr;
  const std::wstring path = folder + L"\\" + library;
  return LoadLibraryExW(path.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
}

void LoadSystemLibraries(std::initializer_list<const wchar_t*> libraries) {
  for (const wchar_t* library : libraries) LoadSystemLibrary(library);
}

}  // namespace

std::wstring SystemFolder() {
  wchar_t folder[MAX_PATH];
  const UINT length = GetSystemDirectoryW(folder, MAX_PATH);
  return length < MAX_PATH ? std::wstring(folder, length) : std::wstring();
}

FARPROC FindSystemFunction(const wchar_t* library, const char* function) {
  const HMODULE module = LoadSystemLibrary(library);
  return module != nullptr ? GetProcAddress(module, function) : nullptr;
}

void TrustSystemFolderOnly() {
  SetDllDirectoryW(L"");
  // Windows 7 has this function only with an update.
  using Function = BOOL(WINAPI*)(DWORD);
  const auto setDirectories = SystemFunction<Function>(L"kernel32.dll", "SetDefaultDllDirectories");
  if (setDirectories != nullptr) setDirectories(LOAD_LIBRARY_SEARCH_SYSTEM32);
  // The system's own libraries load some by name, and Windows 7 without the update and Wine's late
  // imports would still look next to the program. A library that is already loaded is not searched
  // for.
  LoadSystemLibraries(
      {L"cryptbase.dll", L"dwmapi.dll", L"msimg32.dll", L"uxtheme.dll", L"version.dll"});
  if (setDirectories == nullptr) LoadWhatIsAskedForLater();
}

// What the system itself asks for as it starts a program is here already.
UsualLibrarySearch::UsualLibrarySearch() {
  LoadSystemLibrary(L"apphelp.dll");
  SetDllDirectoryW(nullptr);
}

UsualLibrarySearch::~UsualLibrarySearch() {
  SetDllDirectoryW(L"");
}

void LoadWhatIsAskedForLater() {
  LoadSystemLibraries({L"bcrypt.dll", L"crypt32.dll", L"propsys.dll"});
}

}  // namespace talu
