#pragma once

#include <string>

#include "platform/win32/Windows.h"

namespace talu {

/// The full path of the system's program that a command line names without a folder and without an
/// ending; empty where it has none of that name. Windows itself would look beside our program
/// first.
std::wstring SystemProgram(const std::string& commandLine);

/// Starts a program with the usual search for libraries, at normal priority. `program` may be
/// nullptr: the command line then names it. Returns 0 or the system's error.
DWORD StartAsUsual(const wchar_t* program, std::wstring& commandLine, BOOL inheritHandles,
                   STARTUPINFOW& startup, PROCESS_INFORMATION& process);

}  // namespace talu
