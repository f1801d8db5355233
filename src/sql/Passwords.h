#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace talu::sql {

/// What a text holds of passwords, and what others may be shown of it. Takes any text, malformed
/// ones above all: what cannot be told from a password is hidden with it.
class PasswordMask {
 public:
  enum class Form { Statements, ConnectionText };

  explicit PasswordMask(std::string_view text, Form form = Form::Statements);

  /// The text with '***' in place of every password; in a connection text without the quotes.
  const std::string& Text() const { return text_; }
  /// Whether what an error quotes of the text may be a password, or part of one.
  bool Hides(std::string_view quoted) const;

 private:
  std::vector<std::string> passwords_;
  /// The quotes of the text do not match: what is a password in it is not known for certain.
  bool isDoubtful_ = false;
  std::string text_;
};

}  // namespace talu::sql
