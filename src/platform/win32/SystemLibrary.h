#pragma once

#include "platform/win32/Windows.h"

namespace talu {

/// Makes Windows look for libraries in the system folder only, never next to the program or in the
/// current folder: anybody may be able to write to a pack. Call it before anything else.
void TrustSystemFolderOnly();
/// The part that the first page need not wait for: libraries that no window needs. Call it before
/// the first event is handled.
void LoadWhatIsAskedForLater();

/// A function of a library that is loaded from the system folder by its full path; nullptr when
/// either is missing.
FARPROC FindSystemFunction(const char* library, const char* function);

template <class Function>
Function SystemFunction(const char* library, const char* function) {
  return reinterpret_cast<Function>(reinterpret_cast<void*>(FindSystemFunction(library, function)));
}

}  // namespace talu
