#include "platform/win32/Win32Processes.h"

#include <utility>

#include "platform/win32/StartProgram.h"
#include "platform/win32/SystemLibrary.h"
#include "platform/win32/Text.h"
#include "platform/win32/Windows.h"
#include "runtime/RuntimeError.h"

namespace talu {

std::wstring SystemProgram(const std::string& commandLine) {
  const std::string name = commandLine.substr(0, commandLine.find(' '));
  if (name.empty() || name.find_first_of("\\/:.\"") != std::string::npos) return {};
  std::wstring path = SystemFolder();
  if (path.empty()) return {};
  path += L"\\" + Wide(name) + L".exe";
  return GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES ? path : std::wstring();
}

DWORD StartAsUsual(const wchar_t* program, std::wstring& commandLine, BOOL inheritHandles,
                   STARTUPINFOW& startup, PROCESS_INFORMATION& process) {
  const UsualLibrarySearch usual;
  const BOOL started = CreateProcessW(program, commandLine.data(), nullptr, nullptr, inheritHandles,
                                      NORMAL_PRIORITY_CLASS, nullptr, nullptr, &startup, &process);
  return started ? 0 : GetLastError();
}

Win32Processes::Win32Processes(std::function<void()> beforeWaiting)
    : beforeWaiting_(std::move(beforeWaiting)) {}

std::int32_t Win32Processes::RunAndWait(const std::string& commandLine) {
  beforeWaiting_();
  std::wstring command = Wide(commandLine);  // CreateProcess wants to write to it
  STARTUPINFOW startup = {};
  startup.cb = sizeof startup;
  PROCESS_INFORMATION process = {};
  // Whether it started shows in the handles: waiting for none fails at once with -1.
  StartAsUsual(nullptr, command, TRUE, startup, process);
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
  const std::wstring program = SystemProgram(commandLine);
  const DWORD reason =
      StartAsUsual(program.empty() ? nullptr : program.c_str(), command, FALSE, startup, process);
  if (reason != 0) {
    const bool missing = reason == ERROR_FILE_NOT_FOUND || reason == ERROR_PATH_NOT_FOUND ||
                         reason == ERROR_INVALID_NAME;
    throw RuntimeError(missing ? error::kFileNotFound : error::kInvalidProcedureCall);
  }
  CloseHandle(process.hThread);
  CloseHandle(process.hProcess);
}

}  // namespace talu
