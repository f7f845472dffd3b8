// Rounding up, and rounding a quotient up. Results wrap at the type's width.
#pragma once

#include <concepts>
#include <cstdint>

#include "platform/division.h"

namespace korvel {

// To a multiple of a power of two; 0 for an alignment of 0.
template <std::unsigned_integral Value>
constexpr Value round_up_pot(Value value, Value alignment) {
  return static_cast<Value>(value + alignment - 1) & ~static_cast<Value>(alignment - 1);
}

// To a multiple of any step. Neither is 0.
constexpr uint32_t round_up_to_multiple(uint32_t value, uint32_t step) {
  return step + (value - 1) / step * step;
}

// Faults for a divisor of 0.
constexpr uint32_t divide_rounding_up(uint32_t value, uint32_t divisor) {
  return divide(value + divisor - 1, divisor);
}

template <std::unsigned_integral Value>
constexpr bool is_power_of_two_or_zero(Value value) {
  return (value & (value - 1)) == 0;
}

}  // namespace korvel
