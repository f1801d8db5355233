#include "Mishaps.h"

#include <charconv>
#include <stdexcept>

namespace talu::standin {
namespace {

template <typename Value>
Value ToNumber(std::string_view digits) {
  Value number{};
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
  if (error != std::errc() || end != digits.data() + digits.size() || number <= 0) {
    throw std::invalid_argument("not a number: \"" + std::string(digits) + "\"");
  }
  return number;
}

constexpr std::string_view kDefaultFailure = "this statement was told to fail";

struct Parts {
  std::string_view Key;
  SqlMessage Failure;
};

/// "KEY" or "KEY=NUMBER:MESSAGE". A "=" without NUMBER: after it belongs to the key.
Parts ParseFailure(std::string_view rule) {
  const std::size_t equals = rule.rfind('=');
  const std::size_t colon = equals == std::string_view::npos ? equals : rule.find(':', equals);
  if (colon != std::string_view::npos) {
    std::int32_t number = 0;
    const char* last = rule.data() + colon;
    const auto [end, error] = std::from_chars(rule.data() + equals + 1, last, number);
    if (error == std::errc() && end == last && number > 0) {
      return {rule.substr(0, equals), {number, 16, 1, std::string(rule.substr(colon + 1))}};
    }
  }
  return {rule, message::kOwn(kDefaultFailure)};
}

}  // namespace

void Mishaps::Add(Effect effect, std::string_view rule, bool isNumber) {
  Parts parts{rule, {}};
  Rule made;
  if (effect == Effect::Fail) {
    parts = ParseFailure(rule);
    made.What.Failure = parts.Failure;
  } else if (effect == Effect::Delay) {
    const std::size_t equals = rule.rfind('=');
    if (equals == std::string_view::npos) {
      throw std::invalid_argument("a delay is given as TEXT=MILLISECONDS");
    }
    parts.Key = rule.substr(0, equals);
    made.What.Delay = std::chrono::milliseconds(ToNumber<int>(rule.substr(equals + 1)));
  } else {
    made.What.Cuts = true;
  }
  if (parts.Key.empty()) throw std::invalid_argument("a rule without a text");
  if (isNumber) {
    made.Number = ToNumber<std::uint64_t>(parts.Key);
  } else {
    made.Text = parts.Key;
  }
  rules_.push_back(std::move(made));
}

Mishap Mishaps::For(std::uint64_t number, std::string_view batch) const {
  Mishap mishap;
  mishap.Delay = delay_;
  for (const Rule& rule : rules_) {
    const bool applies =
        rule.Number != 0 ? rule.Number == number : batch.find(rule.Text) != std::string_view::npos;
    if (!applies) continue;
    mishap.Delay += rule.What.Delay;
    mishap.Cuts = mishap.Cuts || rule.What.Cuts;
    if (!mishap.Failure) mishap.Failure = rule.What.Failure;
  }
  return mishap;
}

}  // namespace talu::standin
