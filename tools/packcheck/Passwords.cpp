#include "Passwords.h"

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
  // What follows is the rest of a password with a comma in it.
  text.resize(start);
  text += kHiddenPassword;
}

}  // namespace

std::string WithoutPasswords(std::string text) {
  HideRecordPasswords(text);
  return sql::PasswordMask(text, sql::PasswordMask::Form::ConnectionText).Text();
}

}  // namespace talu::packcheck
