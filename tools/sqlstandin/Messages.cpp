#include "Messages.h"

#include "Text.h"

namespace talu::standin::message {

SqlMessage Pattern::Fill(const std::vector<std::string>& arguments) const {
  // How much of a long word a syntax error quotes.
  constexpr std::size_t kQuotedUnits = 128;
  constexpr std::uint8_t kSyntax = 15;
  SqlMessage message{Number, Severity, State, {}};
  auto next = arguments.begin();
  for (const char c : Text) {
    if (c != '%' || next == arguments.end()) {
      message.Text += c;
      continue;
    }
    const std::size_t begin = message.Text.size();
    message.Text += Severity == kSyntax ? FirstUnits(*next, kQuotedUnits) : std::string_view(*next);
    message.Arguments.emplace_back(begin, message.Text.size());
    ++next;
  }
  return message;
}

}  // namespace talu::standin::message
