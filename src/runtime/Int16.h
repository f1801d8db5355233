#pragma once

#include <cstdint>

#include "runtime/RuntimeError.h"

namespace talu {

/// A 16-bit signed integer. Every operation and conversion that leaves the range -32768 to 32767
/// raises error 6.
class Int16 {
 public:
  constexpr Int16() = default;
  constexpr Int16(std::int64_t value)  // NOLINT(google-explicit-constructor): numbers convert
      : value_(Checked(value)) {}

  constexpr operator int() const { return value_; }  // NOLINT(google-explicit-constructor)

  constexpr Int16& operator+=(int other) { return *this = Int16(std::int64_t{value_} + other); }
  constexpr Int16& operator-=(int other) { return *this = Int16(std::int64_t{value_} - other); }
  constexpr Int16& operator++() { return *this += 1; }
  constexpr Int16& operator--() { return *this -= 1; }

  friend constexpr Int16 operator+(Int16 a, Int16 b) { return std::int64_t{a.value_} + b.value_; }
  friend constexpr Int16 operator-(Int16 a, Int16 b) { return std::int64_t{a.value_} - b.value_; }
  friend constexpr Int16 operator*(Int16 a, Int16 b) { return std::int64_t{a.value_} * b.value_; }
  friend constexpr Int16 operator+(Int16 a, int b) { return a + Int16(b); }
  friend constexpr Int16 operator-(Int16 a, int b) { return a - Int16(b); }
  friend constexpr Int16 operator*(Int16 a, int b) { return a * Int16(b); }

 private:
  static constexpr std::int16_t Checked(std::int64_t value) {
    if (value < INT16_MIN || value > INT16_MAX) throw RuntimeError(error::kOverflow);
    return static_cast<std::int16_t>(value);
  }

  std::int16_t value_ = 0;
};

/// Converts to the nearest whole number, halves to the even neighbour. Raises error 6.
Int16 RoundToInt16(double value);

}  // namespace talu
