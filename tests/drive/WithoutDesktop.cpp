// Runs a command line as a service would: without a desktop that anybody sees. Ends with its exit
// code.
//
//   without-desktop PROGRAM [ARGUMENT...]

#include <windows.h>

#include <string>

int main(int count, char** arguments) {
  const HWINSTA station = CreateWindowStationA("nobodys", 0, GENERIC_ALL, nullptr);
  const HWINSTA own = GetProcessWindowStation();
  SetProcessWindowStation(station);
  const HDESK desktop = CreateDesktopA("default", nullptr, nullptr, 0, GENERIC_ALL, nullptr);
  SetProcessWindowStation(own);
  if (station == nullptr || desktop == nullptr) return 99;
  std::string command;
  for (int i = 1; i < count; ++i) command += std::string("\"") + arguments[i] + "\" ";
  char place[] = "nobodys\\default";
  STARTUPINFOA startup = {};
  startup.cb = sizeof startup;
  startup.lpDesktop = place;
  PROCESS_INFORMATION process = {};
  if (!CreateProcessA(nullptr, command.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr,
                      &startup, &process)) {
    return 98;
  }
  WaitForSingleObject(process.hProcess, INFINITE);
  DWORD code = 97;
  GetExitCodeProcess(process.hProcess, &code);
  return static_cast<int>(code);
}
