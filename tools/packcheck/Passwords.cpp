#include "Passwords.h"

#include <algorithm>
#include <string_view>

#include "runtime/TextFunctions.h"

namespace talu::packcheck {
namespace {

constexpr auto kNone = std::string::npos;

/// Position of `word` (upper case, a letter first) in `text` from `from` on, in any case.
std::size_t FindWord(std::string_view text, std::string_view word, std::size_t from) {
  const int first = word.front() | 0x20;
  for (std::size_t at = from; at < text.size(); ++at) {
    if ((text[at] | 0x20) == first && EqualsUpper(text.substr(at, word.size()), word)) return at;
  }
  return kNone;
}

std::size_t SkipBlanks(const std::string& text, std::size_t at) {
  return std::min(text.find_first_not_of(" \t\r\n", at), text.size());
}

void HideConnectionPasswords(std::string& text) {
  constexpr std::string_view kKey = "PWD=";
  for (std::size_t at = FindWord(text, kKey, 0); at != kNone; at = FindWord(text, kKey, at)) {
    at += kKey.size();
    const std::size_t end = std::min(text.find_first_of(";\r\n", at), text.size());
    text.replace(at, end - at, kHiddenPassword);
  }
}

void HideStatementPasswords(std::string& text) {
  constexpr std::string_view kKey = "PASSWORD";
  for (std::size_t at = FindWord(text, kKey, 0); at != kNone; at = FindWord(text, kKey, at)) {
    at = SkipBlanks(text, at + kKey.size());
    if (at == text.size() || text[at] != '=') continue;
    at = SkipBlanks(text, at + 1);
    if (at < text.size() && UCase(text[at]) == 'N') ++at;
    if (at == text.size() || text[at] != '\'') continue;
    ++at;
    std::size_t end = at;  // a doubled quote stands for itself
    while (end < text.size() && (text[end] != '\'' || text.compare(end, 2, "''") == 0)) {
      end += text[end] == '\'' ? 2 : 1;
    }
    end = std::min(end, text.size());
    text.replace(at, end - at, kHiddenPassword);
  }
}

void HideRecordPasswords(std::string& text) {
  if (text.starts_with("PsWord:")) {
    text.resize(text.find(':') + 1);
    text += kHiddenPassword;
  }
  if (!text.starts_with("SystemDSN:")) return;
  std::size_t start = 0;
  for (int comma = 0; comma < 4; ++comma) {
    start = text.find(',', start);
    if (start == kNone) return;
    ++start;
  }
  const std::size_t end = std::min(text.find(',', start), text.size());
  text.replace(start, end - start, kHiddenPassword);
}

}  // namespace

std::string WithoutPasswords(std::string text) {
  HideConnectionPasswords(text);
  HideStatementPasswords(text);
  HideRecordPasswords(text);
  return text;
}

}  // namespace talu::packcheck
