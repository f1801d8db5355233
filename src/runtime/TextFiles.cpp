#include "runtime/TextFiles.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "runtime/RuntimeError.h"
#include "runtime/TextFunctions.h"
#include "runtime/Unicode.h"

namespace talu {
namespace {

constexpr std::size_t kChunk = std::size_t{64} * 1024;

/// Up to where `bytes` can be decoded, whatever follows: no code page has a byte below 0x30 inside
/// a character of several.
std::size_t WholeCharacters(std::string_view bytes) {
  const auto last = std::find_if(bytes.rbegin(), bytes.rend(), [](char character) {
    return static_cast<unsigned char>(character) < 0x30;
  });
  return static_cast<std::size_t>(bytes.rend() - last);
}

}  // namespace

bool LineScanner::Next(std::string_view& line) {
  if (rest_.empty()) return false;
  const void* end = std::memchr(rest_.data(), '\r', rest_.size());
  if (end == nullptr) {
    line = rest_;
    rest_ = {};
    return true;
  }
  const auto length = static_cast<std::size_t>(static_cast<const char*>(end) - rest_.data());
  line = rest_.substr(0, length);
  rest_.remove_prefix(length + 1);
  if (rest_.starts_with('\n')) rest_.remove_prefix(1);
  return true;
}

int TextFiles::FreeFile() const {
  for (int number = 1; number <= kNumbers; ++number) {
    if (!IsOpen(number)) return number;
  }
  throw RuntimeError(error::kTooManyFiles);
}

void TextFiles::Open(const std::string& path, OpenMode mode, int number) {
  if (number < 1 || number > kNumbers) throw RuntimeError(error::kBadFileNumber);
  if (IsOpen(number)) throw RuntimeError(error::kFileAlreadyOpen);
  const std::string upperPath = UCase(path);
  for (const OpenFile& other : pool_) {
    const bool clash = mode != OpenMode::Input || other.Mode != OpenMode::Input;
    if (other.File && clash && other.UpperPath == upperPath) {
      throw RuntimeError(error::kFileAlreadyOpen);
    }
  }
  pool_[static_cast<std::size_t>(number)] = {
      files_.OpenTextFile(path, mode), mode, path, upperPath, {}, 0, {}, {}};
}

void TextFiles::ReopenForAppend(const std::string& path, int number) {
  if (IsOpen(number)) {
    OpenFile& file = pool_[static_cast<std::size_t>(number)];
    if (file.Mode == OpenMode::Append && file.Path == path) {
      files_.ReopenTextFile(path, file.File);
      return;
    }
  }
  Close(number);
  Open(path, OpenMode::Append, number);
}

void TextFiles::Close(int number) {
  if (IsOpen(number)) pool_[static_cast<std::size_t>(number)] = {};
}

std::string_view TextFiles::LineInput(int number) {
  OpenFile& file = Opened(number, true);
  // Most lines are entirely in the buffer, with what follows their end.
  const std::string_view left = std::string_view(file.Buffer).substr(file.At);
  const std::size_t found = left.find('\r');
  if (found != std::string_view::npos && found + 1 < left.size()) {
    file.At += found + (left[found + 1] == '\n' ? 2 : 1);
    return left.substr(0, found);
  }
  if (left.empty() && !Fill(file)) throw RuntimeError(error::kInputPastEnd);
  file.Line.clear();
  do {
    const std::string_view rest = std::string_view(file.Buffer).substr(file.At);
    const std::size_t end = rest.find('\r');
    file.Line.append(rest, 0, end);
    file.At = file.Buffer.size();
    if (end != std::string_view::npos) {
      file.At -= rest.size() - end - 1;
      const bool more = file.At < file.Buffer.size() || Fill(file);
      if (more && file.Buffer[file.At] == '\n') ++file.At;
      break;
    }
  } while (Fill(file));
  return file.Line;
}

void TextFiles::Print(int number, std::initializer_list<std::string_view> pieces) {
  OpenFile& file = Opened(number, false);
  std::size_t size = kCrLf.size();
  for (const std::string_view piece : pieces) size += piece.size();
  std::string record;
  record.reserve(size);
  for (const std::string_view piece : pieces) record += piece;
  file.File->Write(codePage_.FromText(std::move(record += kCrLf)));
}

std::string TextFiles::ReadWhole(const std::string& path) {
  const int number = FreeFile();
  Open(path, OpenMode::Input, number);
  TextFile& file = *pool_[static_cast<std::size_t>(number)].File;
  std::string text;
  std::size_t length = 0;
  try {
    if (file.Size() > kLongestText) throw RuntimeError(error::kOutOfMemory);
    text.resize(static_cast<std::size_t>(file.Size()));
    while (length < text.size()) {
      const std::size_t got = file.Read(text.data() + length, text.size() - length);
      if (got == 0) break;
      length += got;
    }
  } catch (...) {
    Close(number);
    throw;
  }
  Close(number);
  text.resize(length);
  return codePage_.ToText(std::move(text));
}

// What was read stays undecoded until it is text: an error loses nothing of it.
bool TextFiles::Fill(OpenFile& file) {
  file.At = 0;
  file.Buffer.clear();
  std::string& bytes = file.Undecoded;
  for (;;) {
    const std::size_t before = bytes.size();
    bytes.resize(before + kChunk);
    std::size_t got = 0;
    try {
      got = file.File->Read(bytes.data() + before, kChunk);
    } catch (...) {
      bytes.resize(before);
      throw;
    }
    bytes.resize(before + got);
    if (IsAscii(bytes)) {
      file.Buffer.swap(bytes);
      return !file.Buffer.empty();
    }
    const std::size_t end = got != 0 ? WholeCharacters(bytes) : bytes.size();
    if (end == 0) continue;
    file.Buffer = codePage_.ToText(bytes.substr(0, end));
    bytes.erase(0, end);
    return true;
  }
}

}  // namespace talu
