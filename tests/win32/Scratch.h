#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "platform/win32/Text.h"
#include "platform/win32/Windows.h"
#include "runtime/RuntimeError.h"

namespace talu {

/// An empty folder that is gone after the test, with blanks in its name and letters, unless told
/// otherwise such as no code page has together.
class Scratch {
 public:
  explicit Scratch(const std::string& letters = "\u00e4\u8868\u0436") {
    // Windows names it with short names ("RUNNER~1"), and shortcuts then with the long ones.
    wchar_t temp[MAX_PATH] = L"";
    GetLongPathNameW(std::filesystem::temp_directory_path().c_str(), temp, MAX_PATH);
    const std::string name = "talu test " + letters + " " + std::to_string(GetCurrentProcessId());
    path_ = Narrow((temp / std::filesystem::path(Wide(name))).native());
    Clear();
    std::filesystem::create_directory(Wide(path_));
  }
  ~Scratch() { Clear(); }
  Scratch(const Scratch&) = delete;
  Scratch& operator=(const Scratch&) = delete;

  std::string operator/(const std::string& name) const { return path_ + "\\" + name; }
  const std::string& Path() const { return path_; }

  std::string Write(const std::string& name, const std::string& text) const {
    std::ofstream(std::filesystem::path(Wide(*this / name)), std::ios::binary) << text;
    return *this / name;
  }
  static std::string Read(const std::string& path) {
    std::ostringstream text;
    text << std::ifstream(std::filesystem::path(Wide(path)), std::ios::binary).rdbuf();
    return text.str();
  }

 private:
  void Clear() const {
    const std::filesystem::path folder = Wide(path_);
    std::error_code trouble;
    std::filesystem::recursive_directory_iterator entry(folder, trouble);
    for (; !trouble && entry != std::filesystem::recursive_directory_iterator();
         entry.increment(trouble)) {
      SetFileAttributesW(entry->path().c_str(), FILE_ATTRIBUTE_NORMAL);
    }
    std::filesystem::remove_all(folder, trouble);
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
