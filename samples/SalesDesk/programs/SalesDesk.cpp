// The invented product itself: reads the settings that its set-up wrote and shows them.
//
//   SalesDesk.exe                  a window with what it found
//   SalesDesk.exe --check [FILE]   one line into FILE (Check.txt beside the program), exit code 0;
//                                  1 when FILE cannot be written
#include <windows.h>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>

namespace {

std::string ProgramFolder() {
  char path[MAX_PATH] = "";
  const DWORD length = GetModuleFileNameA(nullptr, path, MAX_PATH);
  const std::string whole(path, length);
  return whole.substr(0, whole.find_last_of('\\'));
}

using File = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

File Open(const std::string& path, const char* mode) {
  return File(std::fopen(path.c_str(), mode), std::fclose);
}

// The first line of a settings file; empty when the set-up has not written it.
std::string Setting(const std::string& file) {
  char line[512] = "";
  const File settings = Open(ProgramFolder() + "\\Settings\\" + file, "r");
  if (!settings || std::fgets(line, sizeof line, settings.get()) == nullptr) return "";
  const std::string whole = line;
  return whole.substr(0, whole.find('\n'));
}

// The password counts as set or not set; it is shown nowhere.
std::string Summary(const char* separator) {
  const std::string server = Setting("Server.txt");
  const std::string user = Setting("User.txt");
  const bool hasPassword = Setting("Password.txt").size() > std::string("Password=").size();
  return (server.empty() ? "Server.txt is missing" : server) + separator +
         (user.empty() ? "User.txt is missing" : user) + separator +
         (hasPassword ? "Password is set" : "Password is not set");
}

int Check(const std::string& file) {
  const File report = Open(file, "w");
  if (!report) return EXIT_FAILURE;
  const std::string line = "SalesDesk started; " + Summary("; ") + "\n";
  const bool written =
      std::fputs(line.c_str(), report.get()) >= 0 && std::fflush(report.get()) == 0;
  return written ? EXIT_SUCCESS : EXIT_FAILURE;
}

}  // namespace

int main(int argumentCount, char** arguments) {
  if (argumentCount > 1 && std::string(arguments[1]) == "--check") {
    return Check(argumentCount > 2 ? arguments[2] : ProgramFolder() + "\\Check.txt");
  }
  MessageBoxA(nullptr, Summary("\n").c_str(), "SalesDesk 3", MB_OK | MB_ICONINFORMATION);
  return EXIT_SUCCESS;
}
