#include "platform/win32/Text.h"

#include <iterator>

#include "platform/win32/Windows.h"
#include "runtime/Unicode.h"

namespace talu {

std::wstring Wide(std::string_view text) {
  std::wstring wide(CountUtf16(text), L'\0');
  WriteUtf16(text, wide.data());
  return wide;
}

std::string Narrow(std::wstring_view text) {
  return FromUtf16(text);
}

bool IsShorterThan(std::string_view path, std::uint32_t limit) {
  // Without room for it, the length with its end is returned.
  wchar_t buffer[1];
  return GetFullPathNameW(Wide(path).c_str(), 1, buffer, nullptr) <= limit;
}

std::string SystemMessage(std::int32_t code) {
  wchar_t buffer[512];
  DWORD length = FormatMessageW(
      FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS | FORMAT_MESSAGE_MAX_WIDTH_MASK,
      nullptr, static_cast<DWORD>(code), 0, buffer, static_cast<DWORD>(std::size(buffer)), nullptr);
  while (length > 0 && buffer[length - 1] == L' ') --length;
  if (length == 0) return "Automation error";
  return Narrow({buffer, length});
}

}  // namespace talu
