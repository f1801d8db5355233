#pragma once

#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "Finding.h"
#include "platform/simulated/SimulatedMachine.h"
#include "runtime/TextFiles.h"

namespace talu::packcheck {

/// A pack as Windows would see it, and the findings in it. Paths are relative to the pack folder,
/// with backslashes, in any case.
class CheckedPack {
 public:
  /// Reads the folder's tree, not the files. Raises std::filesystem::filesystem_error, and
  /// std::runtime_error with a line for the user for a code page that is not known.
  CheckedPack(const std::filesystem::path& folder, int codePage)
      : Machine("D:\\Pack", codePage), IsUtf8(codePage == 65001) {
    Machine.Disk.AddHostFolder(folder, Machine.Parts.AppPath);
  }

  bool HasFile(const std::string& path) { return Machine.Disk.FileExists(Full(path)); }
  bool HasFolder(const std::string& path) { return Machine.Disk.FolderExists(Full(path)); }
  /// The folder or file, or a null pointer.
  const SimulatedDisk::Node* Find(const std::string& path) { return Machine.Disk.Find(Full(path)); }
  /// The bytes of a file, or nothing when it does not exist. Raises std::runtime_error with a line
  /// for the user that names the file.
  std::optional<std::string> Read(const std::string& path) {
    try {
      return Machine.Disk.ReadFile(Full(path));
    } catch (const std::runtime_error&) {
      throw;
    } catch (...) {
      throw std::runtime_error(path + ": " + CaughtError().Description);
    }
  }

  SimulatedMachine Machine;
  /// Whether the machine's code page is UTF-8.
  bool IsUtf8;
  packcheck::Findings Findings;

 private:
  std::string Full(const std::string& path) const { return Machine.Parts.AppPath + "\\" + path; }
};

/// The lines of a text as the wizard reads them, numbered as in an editor.
class NumberedLines {
 public:
  explicit NumberedLines(std::string_view text) : lines_(text) {}

  /// Sets `line` and `number` to the next line; returns false when there is none.
  bool Next(std::string_view& line, int& number) {
    if (!lines_.Next(line)) return false;
    number = next_;
    ++next_;
    // Most lines have none, which a search sees faster than a count.
    for (std::size_t at = line.find('\n'); at != line.npos; at = line.find('\n', at + 1)) ++next_;
    return true;
  }

 private:
  LineScanner lines_;
  int next_ = 1;
};

/// The text without blanks and tabs at both ends, as an author sees a line.
inline std::string_view Stripped(std::string_view text) {
  const std::size_t first = text.find_first_not_of(" \t");
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

/// The length in bytes of a byte-order mark at the start of `text`, and whether it is UTF-16.
struct TextMark {
  bool Utf8 = false;
  bool Utf16 = false;
};
inline TextMark MarkOf(std::string_view text) {
  return {text.starts_with("\xEF\xBB\xBF"),
          text.starts_with("\xFF\xFE") || text.starts_with("\xFE\xFF") ||
              text.substr(0, 64).find('\0') != std::string_view::npos};
}

}  // namespace talu::packcheck
