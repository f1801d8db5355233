#include "platform/win32/Win32Processes.h"

#include <utility>

#include "platform/win32/SystemLibrary.h"
#include "platform/win32/Windows.h"
#include "runtime/RuntimeError.h"

namespace talu {
namespace {

/// The system's program that a command line names without a folder and without an ending; empty
/// where it has none of that name. Windows itself would look beside Setup.exe first.
std::string SystemProgram(const std::string& commandLine) {
  const std::string name = commandLine.substr(0, commandLine.find(' '));
  if (name.empty() || name.find_first_of("\\/:.\"") != std::string::npos) return {};
  std::string path = SystemFolder() + "\\" + name + ".exe";
  return GetFileAttributesA(path.c_str()) != INVALID_FILE_ATTRIBUTES ? path : std::string();
}

/// Returns 0 or the system's error.
DWORD StartAsUsual(const char* program, std::string& commandLine, BOOL inheritHandles,
                   STARTUPINFOA& startup, PROCESS_INFORMATION& process) {
  const UsualLibrarySearch usual;
  const BOOL started = CreateProcessA(program, commandLine.data(), nullptr, nullptr, inheritHandles,
                                      NORMAL_PRIORITY_CLASS, nullptr, nullptr, &startup, &process);
  return started ? 0 : GetLastError();
}

}  // namespace

Win32Processes::Win32Processes(std::function<void()> beforeWaiting)
    : beforeWaiting_(std::move(beforeWaiting)) {}

std::int32_t Win32Processes::RunAndWait(const std::string& commandLine) {
  beforeWaiting_();
  std::string command = commandLine;  // CreateProcess wants to write to it
  STARTUPINFOA startup = {};
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
  std::string command = commandLine;
  STARTUPINFOA startup = {};
  startup.cb = sizeof startup;
  startup.dwFlags = STARTF_USESHOWWINDOW;
  startup.wShowWindow = static_cast<WORD>(windowStyle);
  PROCESS_INFORMATION process = {};
  const std::string program = SystemProgram(commandLine);
  const DWORD reason =
      StartAsUsual(program.empty() ? nullptr : program.c_str(), command, FALSE, startup, process);
  if (reason != 0) {
    const bool missing = reason == ERROR_FILE_NOT_FOUND || reason == ERROR_PATH_NOT_FOUND ||
                         reason == ERROR_INVALID_NAME;
    throw RuntimeError(missing ? error::FileNotFound : error::InvalidProcedureCall);
  }
  CloseHandle(process.hThread);
  CloseHandle(process.hProcess);
}

}  // namespace talu
