#include "runtime/TextFunctions.h"

#include <algorithm>
#include <array>

#include "runtime/RuntimeError.h"

namespace talu {
namespace {

// Code page 1252: the letters outside ASCII that have a capital. Source: the code page's published
// table (bestfit1252), simple case mapping.
constexpr std::array<char, 256> MakeUpperTable() {
  std::array<char, 256> table{};
  for (std::size_t i = 0; i < table.size(); ++i) {
    std::size_t upper = i;
    if (i >= 'a' && i <= 'z') upper = i - 32;
    if (i >= 0xE0 && i <= 0xFE && i != 0xF7) upper = i - 32;
    if (i == 0x9A || i == 0x9C || i == 0x9E) upper = i - 16;
    if (i == 0xFF) upper = 0x9F;
    table[i] = static_cast<char>(upper);
  }
  return table;
}

constexpr std::array<char, 256> kUpper = MakeUpperTable();

void RequireStart(Position start) {
  if (start < 1) throw RuntimeError(error::kInvalidProcedureCall);
}

void RequireLength(Position length) {
  if (length < 0) throw RuntimeError(error::kInvalidProcedureCall);
}

Position ToPosition(std::size_t offset) {
  return offset == std::string_view::npos ? 0 : static_cast<Position>(offset) + 1;
}

}  // namespace

Position InStr(Position start, std::string_view text, std::string_view find) {
  RequireStart(start);
  if (start > std::ssize(text)) return 0;
  return ToPosition(text.find(find, static_cast<std::size_t>(start - 1)));
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
  if (start > std::ssize(text)) return 0;
  return ToPosition(text.substr(0, static_cast<std::size_t>(start)).rfind(find));
}

Position InStrRev(std::string_view text, std::string_view find) {
  return text.empty() ? 0 : InStrRev(text, find, std::ssize(text));
}

std::string Mid(std::string_view text, Position start, Position length) {
  RequireStart(start);
  RequireLength(length);
  if (start > std::ssize(text)) return {};
  return std::string(
      text.substr(static_cast<std::size_t>(start - 1), static_cast<std::size_t>(length)));
}

std::string Mid(std::string_view text, Position start) {
  return Mid(text, start, std::ssize(text));
}

std::string Left(std::string_view text, Position length) {
  RequireLength(length);
  return std::string(text.substr(0, static_cast<std::size_t>(length)));
}

std::string Right(std::string_view text, Position length) {
  RequireLength(length);
  return std::string(
      text.substr(text.size() - std::min(text.size(), static_cast<std::size_t>(length))));
}

std::string Trim(std::string_view text) {
  return std::string(TrimView(text));
}

char UCase(char character) {
  return kUpper[static_cast<unsigned char>(character)];
}

std::string UCase(std::string_view text) {
  std::string upper(text);
  for (char& character : upper) character = UCase(character);
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
  return std::ranges::equal(text, upper, {}, [](char character) { return UCase(character); });
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
