#pragma once

#include <string>

#include "platform/win32/Windows.h"

namespace talu {

/// The full path of the program that runs, without short names.
std::string OwnProgramPath();

/// Whether this open file, of which `info` was read, is that of the program that runs, under
/// whatever name.
bool IsOwnProgram(HANDLE handle, const FILE_BASIC_INFO& info);

/// Windows does not delete the file of a program that runs, but lets it be renamed. Moves it by
/// `handle`, which has DELETE access, out of the folder of `path`, and has Windows delete it at its
/// next start. Raises 70 when either is refused; the file is then where it was.
///
/// Nothing else is started for it, no copy runs elsewhere, and nobody has to wait for this program
/// to end: its exit code stays the one of the work. It goes to the folder for temporary files of
/// Windows itself, where nobody but administrators can replace it, or to the root of its own drive;
/// under a name that no other file has, so that whoever puts a link into the way at the next start
/// has nothing else deleted by it.
void TakeAwayOwnProgram(HANDLE handle, const std::wstring& path);

}  // namespace talu
