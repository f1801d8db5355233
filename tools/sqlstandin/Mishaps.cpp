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

void Mishaps::Add(Rule rule) {
  if (rule.Number == 0 && rule.Text.empty()) throw std::invalid_argument("a rule without a text");
  rules_.push_back(std::move(rule));
}

void Mishaps::FailNumber(std::string_view rule) {
  const Parts parts = ParseFailure(rule);
  Add({ToNumber<std::uint64_t>(parts.Key), {}, {{}, false, parts.Failure}});
}

void Mishaps::FailText(std::string_view rule) {
  const Parts parts = ParseFailure(rule);
  Add({0, std::string(parts.Key), {{}, false, parts.Failure}});
}

void Mishaps::CutNumber(std::string_view rule) {
  Add({ToNumber<std::uint64_t>(rule), {}, {{}, true, {}}});
}

void Mishaps::CutText(std::string_view text) {
  Add({0, std::string(text), {{}, true, {}}});
}

void Mishaps::DelayText(std::string_view rule) {
  const std::size_t equals = rule.rfind('=');
  if (equals == std::string_view::npos) {
    throw std::invalid_argument("a delay is given as TEXT=MILLISECONDS");
  }
  Add({0,
       std::string(rule.substr(0, equals)),
       {std::chrono::milliseconds(ToNumber<int>(rule.substr(equals + 1))), false, {}}});
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
