// Writes the steps of an explanation one after another.
#pragma once

#include <initializer_list>
#include <optional>
#include <string>
#include <utility>

#include "tools/explanation/explanation.h"

namespace tool {

// A number and the step that gave it; numbers of the request have none.
struct Number {
  Quantity quantity;
  std::optional<std::size_t> step;

  [[nodiscard]] uint32_t u32() const { return static_cast<uint32_t>(quantity.value); }
  [[nodiscard]] uint64_t u64() const { return static_cast<uint64_t>(quantity.value); }
};

inline Quantity quantity(uint64_t value, Unit unit) {
  return {static_cast<int64_t>(value), unit};
}

class StepWriter {
 public:
  // Where the steps from here on belong.
  void enter(Place place) { place_ = place; }

  // Adds a step that uses these numbers, of which the first is the one before it. Place and inputs
  // are filled in.
  Number add(Step step, std::initializer_list<Number> inputs);

  // The same for a number that is rounded up: one that gets smaller has wrapped.
  Number add_rounded(Step step, std::initializer_list<Number> inputs);

  // The same for a product of two 32-bit numbers that has to fit 32 bits.
  Number add_product(Step step, std::initializer_list<Number> inputs, uint32_t a, uint32_t b);

  // The same for a product that has to fit 64 bits.
  Number add_long_product(Step step, std::initializer_list<Number> inputs, uint64_t a, uint64_t b);

  Explanation take() { return std::move(explanation_); }

  // Says that the number is the value of a field of the record.
  void name(const Number& number, std::string field);

 private:
  Explanation explanation_;
  Place place_;
};

}  // namespace tool
