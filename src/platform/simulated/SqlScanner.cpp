#include "platform/simulated/SqlScanner.h"

#include <algorithm>

namespace talu {
bool IsSqlWordCharacter(char character) {
  const auto byte = static_cast<unsigned char>(character);
  return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') ||
         (byte >= '0' && byte <= '9') || byte >= 0x80 || byte == '_' || byte == '@' ||
         byte == '#' || byte == '$';
}

SqlScanner::SqlScanner(std::string_view statement) : statement_(statement) {
  for (std::string_view& word : words_) word = Read();
}

void SqlScanner::Advance() {
  std::rotate(words_.begin(), words_.begin() + 1, words_.end());
  words_.back() = Read();
}

std::string_view SqlScanner::Read() {
  SkipBlanksAndComments();
  if (at_ == statement_.size()) return {};
  const char first = statement_[at_];
  if (first == '\'' || first == '"' || first == '[') return ReadQuoted(first);
  const std::size_t start = at_++;
  if (!IsSqlWordCharacter(first)) return statement_.substr(start, 1);
  while (at_ < statement_.size() && IsSqlWordCharacter(statement_[at_])) ++at_;
  const std::string_view word = statement_.substr(start, at_ - start);
  // N'...' is a text.
  if ((word == "N" || word == "n") && statement_.substr(at_, 1) == "'") return ReadQuoted('\'');
  return word;
}

void SqlScanner::SkipBlanksAndComments() {
  int depth = 0;  // block comments nest
  while (at_ < statement_.size()) {
    const std::string_view two = statement_.substr(at_, 2);
    if (two == "/*" || (depth > 0 && two == "*/")) {
      depth += two == "/*" ? 1 : -1;
      at_ += 2;
    } else if (depth == 0 && two == "--") {
      at_ = std::min(statement_.find('\n', at_), statement_.size());
    } else if (depth > 0 || static_cast<unsigned char>(statement_[at_]) <= ' ') {
      ++at_;
    } else {
      return;
    }
  }
}

// A doubled quote does not end it.
std::string_view SqlScanner::ReadQuoted(char quote) {
  const char last = quote == '[' ? ']' : quote;
  const std::size_t start = at_;
  std::size_t end = start + 1;
  while (true) {
    end = std::min(statement_.find(last, end), statement_.size());
    if (end + 1 >= statement_.size() || statement_[end + 1] != last) break;
    end += 2;
  }
  at_ = std::min(end + 1, statement_.size());
  return statement_.substr(start, end - start);
}

}  // namespace talu
