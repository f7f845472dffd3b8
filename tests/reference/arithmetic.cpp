// Rounding and division as the 32-bit machine does them: unsigned values wrap, signed ones wrap as
// two's complement, and a zero divisor is a fault.
#include "rules.h"

namespace reference {

uint32_t round_up(uint32_t x, uint32_t a) {
  return (x + a - 1) & ~(a - 1);
}

uint64_t round_up_64(uint64_t x, uint64_t a) {
  return (x + a - 1) & ~(a - 1);
}

uint32_t round_up_to_multiple(uint32_t x, uint32_t a) {
  return a + divide(x - 1, a) * a;
}

uint32_t divide(uint32_t x, uint32_t y) {
  if (y == 0) {
    throw DivisionFault();
  }
  return x / y;
}

int32_t divide_signed(int32_t x, int32_t y) {
  if (y == 0) {
    throw DivisionFault();
  }
  return x / y;
}

uint32_t ceil_divide(uint32_t x, uint32_t y) {
  return divide(x + y - 1, y);
}

int32_t ceil_divide_signed(int32_t x, int32_t y) {
  const int32_t sum =
      static_cast<int32_t>(static_cast<uint32_t>(x) + static_cast<uint32_t>(y) - 1u);
  return divide_signed(sum, y);
}

bool is_power_of_two(uint32_t x) {
  if (x == 0) {
    return true;
  }
  while (x % 2 == 0) {
    x /= 2;
  }
  return x == 1;
}

bool among(uint32_t number, std::initializer_list<Range> ranges) {
  for (const Range& range : ranges) {
    if (number >= range.first && number <= range.last) {
      return true;
    }
  }
  return false;
}

}  // namespace reference
