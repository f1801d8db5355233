#include "OdbcIni.h"

#include <windows.h>

#include <cstring>
#include <fstream>
#include <stdexcept>

namespace talu::wine {

namespace {

/// The folder as Windows programs write it. Wine itself translates the path, so it does not matter
/// which drive letter, if any, shows the folder.
std::filesystem::path SettingsFolder() {
  char unixPath[MAX_PATH] = {};
  const DWORD length = GetEnvironmentVariableA("ODBCSYSINI", unixPath, sizeof unixPath);
  if (length == 0 || length >= sizeof unixPath) {
    throw std::runtime_error("ODBCSYSINI does not name the folder of odbc.ini");
  }

  using Translation = WCHAR*(CDECL*)(const char*);
  const FARPROC found = GetProcAddress(GetModuleHandleA("kernel32.dll"), "wine_get_dos_file_name");
  if (found == nullptr) throw std::runtime_error("this set-up library works under Wine only");
  Translation translate = nullptr;
  static_assert(sizeof translate == sizeof found);
  std::memcpy(&translate, &found, sizeof found);

  WCHAR* translated = translate(unixPath);
  if (translated == nullptr) throw std::runtime_error("no such folder: " + std::string(unixPath));
  std::filesystem::path folder = translated;
  HeapFree(GetProcessHeap(), 0, translated);
  return folder;
}

/// Whether `line` is "[name]".
bool IsHeadOf(const std::string& line, const std::string& name) {
  return line.size() >= name.size() + 2 && line[0] == '[' && line[name.size() + 1] == ']' &&
         _strnicmp(line.c_str() + 1, name.c_str(), name.size()) == 0;
}

}  // namespace

OdbcIni::OdbcIni() : path_(SettingsFolder() / "odbc.ini") {}

void OdbcIni::Replace(const std::string& section, const Entries& entries) const {
  std::string text = TextWithout(section) + "[" + section + "]\n";
  for (const auto& [name, value] : entries) {
    text.append(name).append(" = ").append(value).append("\n");
  }
  Write(text);
}

void OdbcIni::Remove(const std::string& section) const {
  Write(TextWithout(section));
}

std::string OdbcIni::TextWithout(const std::string& section) const {
  if (!std::filesystem::exists(path_)) return {};
  std::ifstream file(path_, std::ios::binary);
  if (!file) throw std::runtime_error("odbc.ini cannot be read");
  std::string text;
  bool inside = false;
  for (std::string line; std::getline(file, line);) {
    if (line.starts_with('[')) inside = IsHeadOf(line, section);
    if (!inside) text += line + "\n";
  }
  if (file.bad()) throw std::runtime_error("odbc.ini cannot be read");
  return text;
}

void OdbcIni::Write(const std::string& text) const {
  std::filesystem::path fresh = path_;
  fresh += ".new";
  std::ofstream file(fresh, std::ios::binary);
  file << text;
  file.close();
  if (!file) throw std::runtime_error("odbc.ini cannot be written");
  std::filesystem::rename(fresh, path_);
}

}  // namespace talu::wine
