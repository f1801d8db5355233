#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace talu::sql {

/// The passwords in a text, and what of it may be shown. Accepts any text, even a malformed one:
/// what cannot be told from a password is hidden too.
class PasswordMask {
 public:
  enum class Form { Statements, ConnectionText };

  explicit PasswordMask(std::string_view text, Form form = Form::Statements);

  /// The text with '***' in place of every password; in a connection text without the quotes. Its
  /// lines keep their numbers, up to where all the rest of a text is hidden.
  const std::string& Text() const { return text_; }
  /// Whether the part of the text that an error quotes may be a password, or part of one.
  bool Hides(std::string_view quoted) const;

 private:
  std::vector<std::string> passwords_;
  /// The quotes of the text do not match, so it is not certain what is a password in it.
  bool isDoubtful_ = false;
  std::string text_;
};

}  // namespace talu::sql
