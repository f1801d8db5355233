#include "Text.h"

#include <windows.h>

namespace talu::drive {

namespace {

std::wstring Decode(UINT codePage, DWORD flags, std::string_view text) {
  const int size = static_cast<int>(text.size());
  const int length = MultiByteToWideChar(codePage, flags, text.data(), size, nullptr, 0);
  std::wstring wide(static_cast<std::size_t>(length), L'\0');
  MultiByteToWideChar(codePage, flags, text.data(), size, wide.data(), length);
  return wide;
}

void Write(DWORD which, std::string_view text) {
  const HANDLE out = GetStdHandle(which);
  const std::string line = std::string(text) + "\n";
  DWORD done = 0;
  DWORD mode = 0;
  if (GetConsoleMode(out, &mode)) {
    const std::wstring wide = Wide(line);
    WriteConsoleW(out, wide.data(), static_cast<DWORD>(wide.size()), &done, nullptr);
  } else {
    WriteFile(out, line.data(), static_cast<DWORD>(line.size()), &done, nullptr);
  }
}

}  // namespace

std::wstring Wide(std::string_view text) {
  return Decode(CP_UTF8, 0, text);
}

std::string Utf8(std::wstring_view text) {
  const int size = static_cast<int>(text.size());
  const int length =
      WideCharToMultiByte(CP_UTF8, 0, text.data(), size, nullptr, 0, nullptr, nullptr);
  std::string bytes(static_cast<std::size_t>(length), '\0');
  WideCharToMultiByte(CP_UTF8, 0, text.data(), size, bytes.data(), length, nullptr, nullptr);
  return bytes;
}

std::string DecodeFile(const std::string& bytes) {
  if (bytes.starts_with("\xEF\xBB\xBF")) return bytes.substr(3);
  const bool valid = bytes.empty() || !Decode(CP_UTF8, MB_ERR_INVALID_CHARS, bytes).empty();
  return valid ? bytes : Utf8(Decode(CP_ACP, 0, bytes));
}

std::string PlainLineEnds(std::string_view text) {
  std::string plain;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '\r') {
      plain += text[i];
    } else if (i + 1 == text.size() || text[i + 1] != '\n') {
      plain += '\n';
    }
  }
  return plain;
}

std::string Quoted(std::string_view text) {
  std::string quoted = "\"";
  for (const char c : PlainLineEnds(text)) {
    if (c == '\n') {
      quoted += "\\n";
    } else if (c == '\t') {
      quoted += "\\t";
    } else {
      if (c == '"' || c == '\\') quoted += '\\';
      quoted += c;
    }
  }
  return quoted + '"';
}

void PrintLine(std::string_view text) {
  Write(STD_OUTPUT_HANDLE, text);
}
void PrintError(std::string_view text) {
  Write(STD_ERROR_HANDLE, text);
}

}  // namespace talu::drive
