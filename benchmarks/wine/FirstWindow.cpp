// Starts a program, waits for its first visible top-level window, prints "MILLISECONDS KILOBYTES"
// (since the start, and the peak of its memory so far), and ends it.
//
//   firstwindow PROGRAM

#include <windows.h>
// Needs windows.h before it.
#include <psapi.h>

#include <cstdio>
#include <string>

namespace {

constexpr DWORD kPatience = 60000;  // milliseconds

struct Search {
  DWORD Process = 0;
  bool Found = false;
};

BOOL CALLBACK Look(HWND window, LPARAM argument) {
  auto& search = *reinterpret_cast<Search*>(argument);
  DWORD process = 0;
  GetWindowThreadProcessId(window, &process);
  RECT area = {};
  GetWindowRect(window, &area);
  search.Found = process == search.Process && IsWindowVisible(window) && area.right > area.left &&
                 area.bottom > area.top;
  return !search.Found;
}

double Milliseconds() {
  LARGE_INTEGER now;
  LARGE_INTEGER frequency;
  QueryPerformanceCounter(&now);
  QueryPerformanceFrequency(&frequency);
  return static_cast<double>(now.QuadPart) * 1000 / static_cast<double>(frequency.QuadPart);
}

}  // namespace

int main(int count, char** arguments) {
  if (count != 2) return 2;
  std::string command = "\"" + std::string(arguments[1]) + "\"";
  STARTUPINFOA start = {};
  start.cb = sizeof start;
  PROCESS_INFORMATION program = {};
  const double begin = Milliseconds();
  if (!CreateProcessA(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &start,
                      &program)) {
    std::fprintf(stderr, "firstwindow: %s cannot be started\n", arguments[1]);
    return 1;
  }
  Search search{program.dwProcessId};
  while (!search.Found && Milliseconds() - begin < kPatience &&
         WaitForSingleObject(program.hProcess, 1) == WAIT_TIMEOUT) {
    EnumWindows(Look, reinterpret_cast<LPARAM>(&search));
  }
  const double end = Milliseconds();
  PROCESS_MEMORY_COUNTERS memory = {};
  GetProcessMemoryInfo(program.hProcess, &memory, sizeof memory);
  TerminateProcess(program.hProcess, 0);
  WaitForSingleObject(program.hProcess, kPatience);
  if (!search.Found) {
    std::fprintf(stderr, "firstwindow: %s showed no window\n", arguments[1]);
    return 1;
  }
  std::printf("%.1f %lu\n", end - begin,
              static_cast<unsigned long>(memory.PeakWorkingSetSize / 1024));
  return 0;
}
