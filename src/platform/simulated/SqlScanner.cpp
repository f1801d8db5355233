#include "platform/simulated/SqlScanner.h"

#include <algorithm>
#include <cctype>

namespace talu {
namespace {

bool IsWordCharacter(char character) {
  const auto byte = static_cast<unsigned char>(character);
  return byte >= 0x80 || std::isalnum(byte) != 0 ||
         std::string_view("_@#$").find(character) != std::string_view::npos;
}

}  // namespace

SqlScanner::SqlScanner(std::string_view statement) : statement_(statement) {
  for (std::string& word : words_) Read(word);
}

void SqlScanner::Advance() {
  std::rotate(words_.begin(), words_.begin() + 1, words_.end());
  Read(words_.back());
}

void SqlScanner::Read(std::string& word) {
  word.clear();
  SkipBlanksAndComments();
  if (at_ == statement_.size()) return;
  const char character = statement_[at_];
  if (character == '\'' || character == '"' || character == '[') {
    ReadQuoted(word, character);
  } else if (IsWordCharacter(character)) {
    const std::size_t start = at_;
    while (at_ < statement_.size() && IsWordCharacter(statement_[at_])) ++at_;
    word = statement_.substr(start, at_ - start);
    // N'...' is a text.
    if ((word == "N" || word == "n") && statement_.substr(at_, 1) == "'") ReadQuoted(word, '\'');
  } else {
    word = character;
    ++at_;
  }
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

// A doubled quote stands for itself.
void SqlScanner::ReadQuoted(std::string& word, char quote) {
  const char end = quote == '[' ? ']' : quote;
  word = quote;
  for (++at_; at_ < statement_.size(); ++at_) {
    if (statement_[at_] == end && statement_.substr(++at_, 1) != std::string_view(&end, 1)) break;
    word += statement_[at_];
  }
}

}  // namespace talu
