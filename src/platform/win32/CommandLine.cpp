#include "platform/win32/CommandLine.h"

#include "platform/win32/Text.h"

namespace talu {
namespace {

bool IsConsole(HANDLE handle) {
  DWORD mode = 0;
  return handle != nullptr && handle != INVALID_HANDLE_VALUE && GetConsoleMode(handle, &mode);
}

}  // namespace

std::vector<std::string> ProgramArguments() {
  std::vector<std::string> arguments;
  int count = 0;
  wchar_t** const wide = CommandLineToArgvW(GetCommandLineW(), &count);
  for (int i = 1; i < count; ++i) arguments.push_back(Narrow(wide[i]));
  LocalFree(wide);
  return arguments;
}

std::optional<std::string> EnvironmentVariable(const std::string& name) {
  const std::wstring wide = Wide(name);
  const DWORD size = GetEnvironmentVariableW(wide.c_str(), nullptr, 0);
  if (size == 0) return std::nullopt;
  std::wstring value(size, L'\0');
  value.resize(GetEnvironmentVariableW(wide.c_str(), value.data(), size));
  return Narrow(value);
}

CommandOutput::CommandOutput(DWORD which) : handle_(GetStdHandle(which)) {
  const DWORD type = handle_ != nullptr && handle_ != INVALID_HANDLE_VALUE ? GetFileType(handle_)
                                                                           : FILE_TYPE_UNKNOWN;
  if (type == FILE_TYPE_DISK || type == FILE_TYPE_PIPE) return;
  // Both outputs attach it; the second finds it done. Windows gives a program with windows none of
  // its own.
  AttachConsole(ATTACH_PARENT_PROCESS);
  console_ = IsConsole(handle_);
  if (console_ || type == FILE_TYPE_CHAR) return;
  handle_ = CreateFileW(L"CONOUT$", GENERIC_READ | GENERIC_WRITE,
                        FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr);
  console_ = IsConsole(handle_);
  if (!console_) handle_ = nullptr;
}

void CommandOutput::WriteLine(std::string_view line) {
  if (handle_ == nullptr || failed_) return;
  const std::string text = std::string(line) + "\n";
  if (console_) {
    const std::wstring wide = Wide(text);
    failed_ =
        !WriteConsoleW(handle_, wide.data(), static_cast<DWORD>(wide.size()), nullptr, nullptr);
    return;
  }
  for (std::size_t done = 0; done < text.size() && !failed_;) {
    DWORD more = 0;
    failed_ = !WriteFile(handle_, text.data() + done, static_cast<DWORD>(text.size() - done), &more,
                         nullptr) ||
              more == 0;
    done += more;
  }
}

}  // namespace talu
