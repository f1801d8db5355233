#pragma once

#include "platform/FileSystemObject.h"
#include "platform/win32/Windows.h"

namespace talu {

/// The bytes of a text file. Others may always read it, but not write it while it is open for
/// output or append.
class Win32TextFile : public TextFile {
 public:
  /// Raises as described at `FileSystemObject::OpenTextFile`.
  Win32TextFile(const std::string& path, OpenMode mode);
  ~Win32TextFile() override;
  Win32TextFile(const Win32TextFile&) = delete;
  Win32TextFile& operator=(const Win32TextFile&) = delete;

  std::uint64_t Size() const override { return size_; }
  std::size_t Read(char* buffer, std::size_t size) override;
  void Write(std::string_view bytes) override;
  /// Continues after the last byte, whoever wrote it. Returns false when the file has been deleted
  /// or cannot be queried.
  bool GoToEnd();

 private:
  HANDLE file_ = INVALID_HANDLE_VALUE;
  std::uint64_t size_ = 0;
};

}  // namespace talu
