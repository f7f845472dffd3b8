// Values of the predicates' arguments, by kind.
#pragma once

#include <algorithm>
#include <cstdint>
#include <vector>

#include "proof/exhaustive/expected_answers.h"

namespace proof {

// What stands beside the format in a call. isFormatRenderableByGpu takes the use alone,
// isUBWCSupportedByGpu neither.
struct Arguments {
  uint32_t samples;
  uint32_t use;  // depth/stencil use or view; passed on as a signed number
};

constexpr bool has_use(Kind kind) {
  return kind != kUbwc;
}

constexpr bool use_is_zero(Kind kind) {
  return kind == kRenderableZero || kind == kSampleableSingleZero || kind == kSampleableMultiZero;
}

constexpr bool has_samples(Kind kind) {
  return kind >= kSampleableSingleZero && kind <= kSampleableMultiNonzero;
}

constexpr bool is_single(Kind kind) {
  return kind == kSampleableSingleZero || kind == kSampleableSingleNonzero;
}

// Arguments of the kind that are others for every number, except where the kind has one value
// alone: multiplying by an odd number changes the order of the numbers, and leaves 0 where it is.
constexpr Arguments arguments_of(Kind kind, uint32_t number) {
  const uint32_t mixed = number * 0x9E3779B1U;
  const uint32_t nonzero = mixed != 0 ? mixed : 1;
  const uint32_t mixed_again = number * 0x85EBCA6BU;
  const uint32_t multi = mixed_again >= 2 ? mixed_again : 2;
  return {is_single(kind) ? number & 1 : multi, use_is_zero(kind) ? 0 : nonzero};
}

// 0, all powers of two, all ones; sorted, each once.
inline std::vector<uint32_t> values_of_one_bit() {
  std::vector<uint32_t> values = {0};
  for (uint32_t bit = 0; bit < 32; ++bit) values.push_back(1U << bit);
  values.push_back(UINT32_MAX);
  return values;
}

// 0, all powers of two with their neighbours, the negatives of all of these; sorted, each once.
inline std::vector<uint32_t> values_at_every_bit() {
  std::vector<uint32_t> values;
  for (uint32_t bit = 0; bit < 32; ++bit) {
    for (uint32_t offset : {UINT32_MAX, 0U, 1U}) {
      const uint32_t value = (1U << bit) + offset;
      values.push_back(value);
      values.push_back(0U - value);
    }
  }
  std::sort(values.begin(), values.end());
  values.erase(std::unique(values.begin(), values.end()), values.end());
  return values;
}

// Every pair of the values that is of the kind; an argument that the kind does not have is 0.
inline std::vector<Arguments> pairs_of(Kind kind, const std::vector<uint32_t>& values) {
  std::vector<Arguments> pairs;
  const auto samples_fit = [kind](uint32_t samples) {
    return has_samples(kind) ? (samples < 2) == is_single(kind) : samples == 0;
  };
  const auto use_fits = [kind](uint32_t use) {
    return has_use(kind) ? (use == 0) == use_is_zero(kind) : use == 0;
  };
  for (uint32_t samples : values) {
    if (!samples_fit(samples)) continue;
    for (uint32_t use : values) {
      if (use_fits(use)) pairs.push_back({samples, use});
    }
  }
  return pairs;
}

}  // namespace proof
