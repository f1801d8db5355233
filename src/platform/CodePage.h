#pragma once

#include <memory>
#include <string>
#include <string_view>

namespace talu {

/// The 8-bit encoding of a machine's text files (its "ANSI" code page), and the door between it and
/// the process, where texts are UTF-8. Each platform has its own implementation.
class CodePage {
 public:
  /// By the number that Windows gives it (1252, 932, 65001); 0 is that of the machine that the
  /// program runs on, which only Windows has. Raises std::runtime_error for one that is not known.
  explicit CodePage(int number);
  ~CodePage();
  CodePage(const CodePage&) = delete;
  CodePage& operator=(const CodePage&) = delete;

  /// Bytes of the code page to a text. What is no character is replaced; a carriage return is
  /// always one, whatever stands before it.
  std::string ToText(std::string bytes) const;
  /// A text to bytes of the code page. What it lacks becomes the platform's best fit, or "?".
  std::string FromText(std::string text) const;

 private:
  struct Converter;
  std::unique_ptr<Converter> converter_;
};

/// Upper case as the platform has it, by simple mapping: no character becomes two.
std::string UpperCase(std::string_view text);

}  // namespace talu
