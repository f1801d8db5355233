#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>

#include "platform/CodePage.h"
#include "platform/FileSystemObject.h"
#include "runtime/RuntimeError.h"

namespace talu {

/// The lines of a text in memory. A CR or a CR LF ends a line, a lone LF does not; the last line
/// needs no end.
class LineScanner {
 public:
  explicit LineScanner(std::string_view text) : rest_(text) {}

  /// Sets `line` to the next line; returns false when there is none.
  bool Next(std::string_view& line);

 private:
  std::string_view rest_;
};

/// The length limit of a text in bytes: a 32-bit program has no room for a longer one, and the
/// simulated machine has none either.
inline constexpr std::uint64_t kLongestText = 0x7FFFFFFE;

/// Text files by number, as in the run-time: a pool of 255 numbers, each free or open. The files
/// are in the machine's code page; lines end as in `LineScanner`. What is printed is on disk when
/// the call returns.
class TextFiles {
 public:
  TextFiles(FileSystemObject& files, const CodePage& codePage)
      : files_(files), codePage_(codePage) {}

  /// The lowest number that is not open. Raises 67.
  int FreeFile() const;
  /// Opens a file under a number. Raises 52 for a number outside 1 to 255, 55 when the number is
  /// open or the file is open for writing (for writing: open at all), and what the file system
  /// raises.
  void Open(const std::string& path, OpenMode mode, int number);
  /// Closes a number and opens a file for append under it. Raises as `Open` does.
  void ReopenForAppend(const std::string& path, int number);
  /// Closes a number; no error when it is not open.
  void Close(int number);
  bool IsOpen(int number) const {
    return number >= 1 && number <= kNumbers && pool_[static_cast<std::size_t>(number)].File;
  }
  /// Whether everything has been read. Raises 52 when the number is not open, 54 when it is not
  /// open for input.
  bool EndOfFile(int number) {
    OpenFile& file = Opened(number, true);
    return file.At == file.Buffer.size() && !Fill(file);
  }
  /// The next line, without its end, valid until the number is used again. Raises 52, 54, and 62 at
  /// the end of the file.
  std::string_view LineInput(int number);
  /// Writes the pieces and a line end, as one record. Raises 52, 54, 57, 61.
  void Print(int number, std::initializer_list<std::string_view> pieces);

  /// Reads a whole file under a free number and closes it. Raises as `FreeFile` and `Open` do, and
  /// 7 for a file longer than `kLongestText`.
  std::string ReadWhole(const std::string& path);

 private:
  static constexpr int kNumbers = 255;

  struct OpenFile {
    std::unique_ptr<TextFile> File;
    OpenMode Mode = OpenMode::Input;
    std::string Path;
    std::string UpperPath;
    /// The last part that was read, as text.
    std::string Buffer;
    std::size_t At = 0;
    /// The bytes after it, which may end inside a character.
    std::string Undecoded;
    /// A line that spans buffers.
    std::string Line;
  };

  OpenFile& Opened(int number, bool forInput) {
    if (!IsOpen(number)) throw RuntimeError(error::kBadFileNumber);
    OpenFile& file = pool_[static_cast<std::size_t>(number)];
    if ((file.Mode == OpenMode::Input) != forInput) throw RuntimeError(error::kBadFileMode);
    return file;
  }
  bool Fill(OpenFile& file);

  FileSystemObject& files_;
  const CodePage& codePage_;
  std::array<OpenFile, kNumbers + 1> pool_;  // element 0 is never open
};

}  // namespace talu
