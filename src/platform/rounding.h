// Rounding up, in the two forms that the hardware's rules use. Results wrap at the type's width.
#pragma once

#include <concepts>
#include <cstdint>

#include "platform/division.h"

namespace korvel {

// To a multiple of a power of two by mask; 0 for an alignment of 0. For an alignment that is no
// power of two the mask clears what it clears, and callers that keep that habit of the hardware
// rely on it.
template <std::unsigned_integral Value>
constexpr Value round_up(Value value, Value alignment) {
  return static_cast<Value>(value + alignment - 1) & ~static_cast<Value>(alignment - 1);
}

// To an exact multiple of any step but 0; a value of 0 takes one whole step.
constexpr uint32_t round_up_to_multiple(uint32_t value, uint32_t step) {
  return value == 0 ? step : step + (value - 1) / step * step;
}

// The same without dividing, for a step that is a power of two; `value` is not 0.
constexpr uint32_t round_up_counted(uint32_t value, uint32_t step) {
  return ((value - 1) | (step - 1)) + 1;
}

// And for any value.
constexpr uint32_t round_up_to_power_of_two(uint32_t value, uint32_t step) {
  return value == 0 ? step : round_up_counted(value, step);
}

constexpr uint32_t divide_rounding_up(uint32_t value, uint32_t divisor) {
  return divide(value + divisor - 1, divisor);
}

// 0 counts as a power of two.
template <std::unsigned_integral Value>
constexpr bool is_power_of_two_or_zero(Value value) {
  return (value & (value - 1)) == 0;
}

}  // namespace korvel
