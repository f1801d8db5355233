#pragma once

#include <string>

#include "platform/win32/Windows.h"

namespace talu {

/// Makes Windows look for libraries in the system folder only, never next to the program or in the
/// current folder: anybody may be able to write to a pack. Call it before anything else.
void TrustSystemFolderOnly();
/// The part that the first page need not wait for: libraries that no window needs. Call it before
/// the first event is handled.
void LoadWhatIsAskedForLater();

/// The search for libraries as Windows has it, as long as this lives: a program that is started
/// meanwhile inherits that one, not ours. Nothing is loaded here by name meanwhile.
class UsualLibrarySearch {
 public:
  UsualLibrarySearch();
  ~UsualLibrarySearch();
  UsualLibrarySearch(const UsualLibrarySearch&) = delete;
  UsualLibrarySearch& operator=(const UsualLibrarySearch&) = delete;
};

/// The system's folder, without a backslash at its end; empty when Windows does not say.
std::wstring SystemFolder();

/// A function of a library that is loaded from the system folder by its full path; nullptr when
/// either is missing.
FARPROC FindSystemFunction(const wchar_t* library, const char* function);

template <class Function>
Function SystemFunction(const wchar_t* library, const char* function) {
  return reinterpret_cast<Function>(reinterpret_cast<void*>(FindSystemFunction(library, function)));
}

}  // namespace talu
