#include "Passwords.h"

#include <algorithm>

#include "sql/Passwords.h"

namespace talu::packcheck {
namespace {

void HideRecordPasswords(std::string& text) {
  if (text.starts_with("PsWord:")) {
    text.resize(text.find(':') + 1);
    text += kHiddenPassword;
  }
  if (!text.starts_with("SystemDSN:")) return;
  std::size_t start = 0;
  for (int comma = 0; comma < 4; ++comma) {
    start = text.find(',', start);
    if (start == std::string::npos) return;
    ++start;
  }
  const std::size_t end = std::min(text.find(',', start), text.size());
  text.replace(start, end - start, kHiddenPassword);
}

}  // namespace

std::string WithoutPasswords(std::string text) {
  HideRecordPasswords(text);
  return sql::PasswordMask(text, sql::PasswordMask::Form::ConnectionText).Text();
}

}  // namespace talu::packcheck
