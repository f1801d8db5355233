#include "platform/CodePage.h"

#include <stdexcept>
#include <utility>

#include "platform/win32/Windows.h"
#include "runtime/Unicode.h"

namespace talu {

namespace {

// The tools that run without the rest of this folder have this file too.
std::wstring Utf16(std::string_view text) {
  std::wstring units(CountUtf16(text), L'\0');
  WriteUtf16(text, units.data());
  return units;
}

std::string Decode(UINT codePage, std::string_view bytes) {
  const int size = static_cast<int>(bytes.size());
  const int length = MultiByteToWideChar(codePage, 0, bytes.data(), size, nullptr, 0);
  std::wstring wide(static_cast<std::size_t>(length), L'\0');
  MultiByteToWideChar(codePage, 0, bytes.data(), size, wide.data(), length);
  return FromUtf16<wchar_t>(wide);
}

}  // namespace

struct CodePage::Converter {
  UINT Number;
};

CodePage::CodePage(int number)
    : converter_(std::make_unique<Converter>(Converter{static_cast<UINT>(number)})) {
  const std::string ascii = "{A}";
  if ((number != CP_ACP && !IsValidCodePage(converter_->Number)) ||
      Decode(converter_->Number, ascii) != ascii) {
    throw std::runtime_error("this system has no ANSI code page " + std::to_string(number));
  }
}

CodePage::~CodePage() = default;

std::string CodePage::ToText(std::string bytes) const {
  if (IsAscii(bytes)) return bytes;
  return DecodePieces(bytes, [this](std::string_view piece, std::string& text) {
    text += IsAscii(piece) ? std::string(piece) : Decode(converter_->Number, piece);
  });
}

std::string CodePage::FromText(std::string text) const {
  if (IsAscii(text)) return text;
  const std::wstring wide = Utf16(text);
  const int length = static_cast<int>(wide.size());
  const int size =
      WideCharToMultiByte(converter_->Number, 0, wide.data(), length, nullptr, 0, nullptr, nullptr);
  std::string bytes(static_cast<std::size_t>(size), '\0');
  WideCharToMultiByte(converter_->Number, 0, wide.data(), length, bytes.data(), size, nullptr,
                      nullptr);
  return bytes;
}

std::string UpperCase(std::string_view text) {
  const std::wstring wide = Utf16(text);
  const int length = static_cast<int>(wide.size());
  std::wstring upper(wide.size(), L'\0');
  LCMapStringW(LOCALE_USER_DEFAULT, LCMAP_UPPERCASE, wide.data(), length, upper.data(), length);
  return FromUtf16<wchar_t>(upper);
}

}  // namespace talu
