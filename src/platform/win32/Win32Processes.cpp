#include "platform/win32/Win32Processes.h"

#include <utility>

#include "platform/win32/Text.h"
#include "platform/win32/Windows.h"
#include "runtime/RuntimeError.h"

namespace talu {

Win32Processes::Win32Processes(std::function<void()> beforeWaiting)
    : beforeWaiting_(std::move(beforeWaiting)) {}

std::int32_t Win32Processes::RunAndWait(const std::string& commandLine) {
  beforeWaiting_();
  std::wstring command = Wide(commandLine);  // CreateProcess wants to write to it
  STARTUPINFOW startup = {};
  startup.cb = sizeof startup;
  PROCESS_INFORMATION process = {};
  // Whether it started shows in the handles: waiting for none fails at once with -1.
  CreateProcessW(nullptr, command.data(), nullptr, nullptr, TRUE, NORMAL_PRIORITY_CLASS, nullptr,
                 nullptr, &startup, &process);
  DWORD result = WAIT_FAILED;
  if (process.hProcess != nullptr) {
    result = WaitForSingleObject(process.hProcess, INFINITE);
    GetExitCodeProcess(process.hProcess, &result);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
  }
  return static_cast<std::int32_t>(result);
}

void Win32Processes::Start(const std::string& commandLine, int windowStyle) {
  std::wstring command = Wide(commandLine);
  STARTUPINFOW startup = {};
  startup.cb = sizeof startup;
  startup.dwFlags = STARTF_USESHOWWINDOW;
  startup.wShowWindow = static_cast<WORD>(windowStyle);
  PROCESS_INFORMATION process = {};
  // Without an application name Windows looks along the PATH, as a command line does.
  if (!CreateProcessW(nullptr, command.data(), nullptr, nullptr, FALSE, NORMAL_PRIORITY_CLASS,
                      nullptr, nullptr, &startup, &process)) {
    const DWORD reason = GetLastError();
    const bool missing = reason == ERROR_FILE_NOT_FOUND || reason == ERROR_PATH_NOT_FOUND ||
                         reason == ERROR_INVALID_NAME;
    throw RuntimeError(missing ? error::kFileNotFound : error::kInvalidProcedureCall);
  }
  CloseHandle(process.hThread);
  CloseHandle(process.hProcess);
}

}  // namespace talu
