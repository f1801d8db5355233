#include "platform/win32/Text.h"

#include "platform/win32/Windows.h"

namespace talu {

std::wstring Wide(std::string_view text) {
  const int length = static_cast<int>(text.size());
  const int needed = MultiByteToWideChar(CP_ACP, 0, text.data(), length, nullptr, 0);
  std::wstring wide(static_cast<std::size_t>(needed), L'\0');
  MultiByteToWideChar(CP_ACP, 0, text.data(), length, wide.data(), needed);
  return wide;
}

std::string Narrow(std::wstring_view text) {
  const int length = static_cast<int>(text.size());
  const int needed =
      WideCharToMultiByte(CP_ACP, 0, text.data(), length, nullptr, 0, nullptr, nullptr);
  std::string narrow(static_cast<std::size_t>(needed), '\0');
  WideCharToMultiByte(CP_ACP, 0, text.data(), length, narrow.data(), needed, nullptr, nullptr);
  return narrow;
}

std::string SystemMessage(std::int32_t code) {
  char buffer[512];
  DWORD length = FormatMessageA(
      FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS | FORMAT_MESSAGE_MAX_WIDTH_MASK,
      nullptr, static_cast<DWORD>(code), 0, buffer, sizeof buffer, nullptr);
  while (length > 0 && buffer[length - 1] == ' ') --length;
  if (length == 0) return "Automation error";
  return std::string(buffer, length);
}

}  // namespace talu
