#pragma once

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>

#include "platform/win32/Windows.h"
#include "runtime/RuntimeError.h"

namespace talu {

/// An empty folder that is gone after the test, with blanks and an 8-bit character in its name.
class Scratch {
 public:
  Scratch() {
    char temp[MAX_PATH];
    GetTempPathA(MAX_PATH, temp);
    path_ = std::string(temp) + "talu test \xE4 " + std::to_string(GetCurrentProcessId());
    Clear();
    CreateDirectoryA(path_.c_str(), nullptr);
  }
  ~Scratch() { Clear(); }
  Scratch(const Scratch&) = delete;
  Scratch& operator=(const Scratch&) = delete;

  std::string operator/(const std::string& name) const { return path_ + "\\" + name; }
  const std::string& Path() const { return path_; }

  std::string Write(const std::string& name, const std::string& text) const {
    std::ofstream(*this / name, std::ios::binary) << text;
    return *this / name;
  }
  static std::string Read(const std::string& path) {
    std::ostringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    return text.str();
  }

 private:
  void Clear() const { Remove(path_); }
  static void Remove(const std::string& folder) {
    WIN32_FIND_DATAA found;
    const HANDLE search = FindFirstFileA((folder + "\\*").c_str(), &found);
    if (search == INVALID_HANDLE_VALUE) return;
    do {
      const std::string name = found.cFileName;
      if (name == "." || name == "..") continue;
      const std::string path = folder + "\\" + name;
      SetFileAttributesA(path.c_str(), FILE_ATTRIBUTE_NORMAL);
      if ((found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0) {
        Remove(path);
      } else {
        DeleteFileA(path.c_str());
      }
    } while (FindNextFileA(search, &found));
    FindClose(search);
    RemoveDirectoryA(folder.c_str());
  }

  std::string path_;
};

/// The number of the run-time error that `action` raises, 0 when it raises none.
template <class Action>
std::int32_t ErrorOf(const Action& action) {
  try {
    action();
    return 0;
  } catch (const RuntimeError& error) {
    return error.Number;
  }
}

}  // namespace talu
