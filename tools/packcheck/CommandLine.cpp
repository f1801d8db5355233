#include "CommandLine.h"

#include <cstdlib>
#include <stdexcept>

#ifdef _WIN32
#include <windows.h>
// Needs windows.h before it.
#include <shellapi.h>

#include <filesystem>
#else
#include <fcntl.h>
#include <unistd.h>

#include <iostream>
#endif

namespace talu::packcheck {

#ifdef _WIN32
std::vector<std::string> Utf8Arguments(int, char**) {
  SetConsoleOutputCP(CP_UTF8);
  int count = 0;
  wchar_t** const wide = CommandLineToArgvW(GetCommandLineW(), &count);
  std::vector<std::string> result;
  for (int i = count - 1; i > 0; --i) {
    const std::u8string text = std::filesystem::path(wide[i]).u8string();
    result.emplace_back(text.begin(), text.end());
  }
  LocalFree(wide);
  return result;
}

// A closed standard file has no number here that another file could get.
void HoldStandardFiles() {}
#else
void HoldStandardFiles() {
  for (int number = 0; number <= 2; ++number) {
    if (fcntl(number, F_GETFD) >= 0) continue;
    open("/dev/null", O_RDONLY);  // gets the lowest free number
    if (number == STDOUT_FILENO) std::cout.setstate(std::ios::badbit);
  }
}

std::vector<std::string> Utf8Arguments(int count, char** arguments) {
  std::vector<std::string> result;
  for (int i = count - 1; i > 0; --i) result.emplace_back(arguments[i]);
  return result;
}
#endif

std::string Utf8Environment(const std::string& name) {
#ifdef _WIN32
  const auto* const wide =
      _wgetenv(std::filesystem::path(std::u8string(name.begin(), name.end())).c_str());
  const std::u8string text = std::filesystem::path(wide != nullptr ? wide : L"").u8string();
  std::string value(text.begin(), text.end());
#else
  const char* const text = std::getenv(name.c_str());
  std::string value = text != nullptr ? text : "";
#endif
  if (value.empty())
    throw std::runtime_error("--password-from: there is no " + name + " in the environment");
  return value;
}

}  // namespace talu::packcheck
