#include "tools/explanation/step_writer.h"

#include <utility>

namespace tool {

Number StepWriter::add(Step step, std::initializer_list<Number> inputs) {
  step.place = place_;
  step.before = inputs.begin()->quantity;
  step.continues = inputs.begin()->step;
  for (const Number& input : inputs) {
    if (input.step) step.inputs.push_back(*input.step);
  }
  const Number result = {step.after, explanation_.steps.size()};
  explanation_.steps.push_back(std::move(step));
  return result;
}

Number StepWriter::add_rounded(Step step, std::initializer_list<Number> inputs) {
  step.wrapped = static_cast<uint64_t>(step.after.value) < inputs.begin()->u64();
  return add(std::move(step), inputs);
}

Number StepWriter::add_product(Step step, std::initializer_list<Number> inputs, uint32_t a,
                               uint32_t b) {
  const uint64_t exact = uint64_t{a} * b;
  if (static_cast<uint64_t>(step.after.value) != exact) {
    step.wrapped = true;
    step.exact = exact;
  }
  return add(std::move(step), inputs);
}

Number StepWriter::add_long_product(Step step, std::initializer_list<Number> inputs, uint64_t a,
                                    uint64_t b) {
  uint64_t product = 0;
  step.wrapped = __builtin_mul_overflow(a, b, &product);
  return add(std::move(step), inputs);
}

void StepWriter::name(const Number& number, std::string field) {
  explanation_.steps[number.step.value()].field = std::move(field);
}

}  // namespace tool
