#include "runtime/TextFunctions.h"

#include <algorithm>

#include "platform/CodePage.h"
#include "runtime/RuntimeError.h"
#include "runtime/Unicode.h"

namespace talu {
namespace {

char Upper(char character) {
  return character >= 'a' && character <= 'z' ? static_cast<char>(character - 'a' + 'A')
                                              : character;
}

void RequireStart(Position start) {
  if (start < 1) throw RuntimeError(error::kInvalidProcedureCall);
}

void RequireLength(Position length) {
  if (length < 0) throw RuntimeError(error::kInvalidProcedureCall);
}

// Each of these works on units of one size: on the bytes of an ASCII text, else on UTF-16.

template <class Text>
Position Found(std::size_t offset) {
  return offset == Text::npos ? 0 : static_cast<Position>(offset) + 1;
}

template <class Text>
Position FindFrom(Position start, Text text, Text find) {
  if (start > std::ssize(text)) return 0;
  return Found<Text>(text.find(find, static_cast<std::size_t>(start - 1)));
}

template <class Text>
Position FindLast(Text text, Text find, Position start) {
  if (start > std::ssize(text)) return 0;
  return Found<Text>(text.substr(0, static_cast<std::size_t>(start)).rfind(find));
}

template <class Text>
Text Cut(Text text, Position start, Position length) {
  if (start > std::ssize(text)) return {};
  return text.substr(static_cast<std::size_t>(start - 1), static_cast<std::size_t>(length));
}

std::u16string Utf16(std::string_view text) {
  std::u16string units(CountUtf16(text), u'\0');
  WriteUtf16(text, units.data());
  return units;
}

}  // namespace

Position Length(std::string_view text) {
  return static_cast<Position>(CountUtf16(text));
}

Position InStr(Position start, std::string_view text, std::string_view find) {
  RequireStart(start);
  if (IsAscii(text)) return FindFrom(start, text, find);
  return FindFrom<std::u16string_view>(start, Utf16(text), Utf16(find));
}

Position InStr(std::string_view text, std::string_view find) {
  return InStr(1, text, find);
}

bool Contains(std::string_view text, Sought find) {
  if (find.Text.empty()) return !text.empty();
  const char rarest = find.Text[find.Rarest];
  for (std::size_t at = text.find(rarest, find.Rarest); at != std::string_view::npos;
       at = text.find(rarest, at + 1)) {
    // Most differ in the first characters, which needs no call.
    const std::string_view there = text.substr(at - find.Rarest);
    if (std::ranges::mismatch(find.Text, there).in1 == find.Text.end()) return true;
  }
  return false;
}

Position InStrRev(std::string_view text, std::string_view find, Position start) {
  RequireStart(start);
  if (IsAscii(text)) return FindLast(text, find, start);
  return FindLast<std::u16string_view>(Utf16(text), Utf16(find), start);
}

Position InStrRev(std::string_view text, std::string_view find) {
  return text.empty() ? 0 : InStrRev(text, find, Length(text));
}

std::string Mid(std::string_view text, Position start, Position length) {
  RequireStart(start);
  RequireLength(length);
  if (IsAscii(text)) return std::string(Cut(text, start, length));
  const std::u16string units = Utf16(text);
  return FromUtf16(Cut<std::u16string_view>(units, start, length));
}

std::string Mid(std::string_view text, Position start) {
  return Mid(text, start, std::ssize(text));
}

std::string Left(std::string_view text, Position length) {
  return Mid(text, 1, length);
}

std::string Right(std::string_view text, Position length) {
  RequireLength(length);
  return Mid(text, std::max<Position>(Length(text) - length, 0) + 1);
}

std::string Trim(std::string_view text) {
  return std::string(TrimView(text));
}

std::string UCase(std::string_view text) {
  if (!IsAscii(text)) return UpperCase(text);
  std::string upper(text);
  std::ranges::transform(upper, upper.begin(), Upper);
  return upper;
}

bool ContainsUpper(std::string_view text, std::string_view upper) {
  // The texts to find begin with a character that has no case, so it can be searched first.
  const char first = upper.front();
  for (std::size_t at = text.find(first); at != std::string_view::npos;
       at = text.find(first, at + 1)) {
    if (EqualsUpper(text.substr(at, upper.size()), upper)) return true;
  }
  return false;
}

bool EqualsUpper(std::string_view text, std::string_view upper) {
  return std::ranges::equal(text, upper, {}, Upper);
}

std::vector<std::string> Split(std::string_view text, char separator) {
  std::vector<std::string> pieces;
  if (text.empty()) return pieces;
  std::size_t start = 0;
  for (std::size_t at = text.find(separator); at != std::string_view::npos;
       at = text.find(separator, start)) {
    pieces.emplace_back(text.substr(start, at - start));
    start = at + 1;
  }
  pieces.emplace_back(text.substr(start));
  return pieces;
}

const std::string& Element(const std::vector<std::string>& array, std::ptrdiff_t index) {
  if (index < 0 || index >= std::ssize(array)) throw RuntimeError(error::kSubscriptOutOfRange);
  return array[static_cast<std::size_t>(index)];
}

std::string Replace(std::string_view text, std::string_view find, std::string_view replacement) {
  if (find.empty()) return std::string(text);
  std::string result;
  std::size_t start = 0;
  for (std::size_t at = text.find(find); at != std::string_view::npos;
       at = text.find(find, start)) {
    result.append(text, start, at - start).append(replacement);
    start = at + find.size();
  }
  return result.append(text, start);
}

std::string ParentPath(std::string_view path) {
  return Left(path, InStrRev(path, "\\") - 1);
}

}  // namespace talu
