// The alignment entries as calls that return what they stored.
#pragma once

#include <gmock/gmock.h>

#include <climits>
#include <cstdint>
#include <ostream>
#include <string>

#include "tests/harness/chips.h"
#include "tests/harness/faults.h"
#include "tests/harness/gpu.h"

namespace align_test {

constexpr uint32_t kLinear = 0;
constexpr uint32_t kTiled = 1;

// Formats that stand for their element size.
constexpr uint32_t kBytes1 = 61;
constexpr uint32_t kBytes2 = 56;
constexpr uint32_t kBytes2Tall = 49;  // in the tall-tile set of every family
constexpr uint32_t kBytes3 = 508;
constexpr uint32_t kBytes4 = 28;
constexpr uint32_t kBytes6 = 523;
constexpr uint32_t kBytes8 = 11;
constexpr uint32_t kBytes12 = 6;
constexpr uint32_t kBytes16 = 2;
constexpr uint32_t kBc1 = 71;  // 4 x 4 texels, 8 bytes
constexpr uint32_t kBc7 = 98;  // 4 x 4 texels, 16 bytes
constexpr uint32_t kFourCC = 0x37425857;

// No row is so long that a limit of this many bytes lets it be padded.
constexpr int32_t kNeverPad = INT_MAX;
// And every row, an empty one included, is longer than this.
constexpr int32_t kAlwaysPad = -1;

constexpr uint32_t kCanary = 0xC0FFEE77;

struct Size {
  uint32_t width = kCanary;
  uint32_t height = kCanary;

  friend bool operator==(const Size&, const Size&) = default;
  friend void PrintTo(const Size& size, std::ostream* out) {
    *out << size.width << " x " << size.height;
  }
};

struct Request {
  int32_t width = 1;
  int32_t height = 1;
  uint32_t plane = 0;
  uint32_t format = kBytes4;
  uint32_t samples = 1;
  uint32_t mode = kTiled;
  uint32_t selector = 1;
  int32_t min_padded = 0;
  // The entries with more arguments only.
  uint32_t divisor = 1;
  uint32_t want_extra = 0;
  uint32_t tiling_allowed = 0;
};

inline std::string describe(const Request& r) {
  return "format " + std::to_string(r.format) + " plane " + std::to_string(r.plane) + ", " +
         std::to_string(r.width) + " x " + std::to_string(r.height) + ", samples " +
         std::to_string(r.samples) + ", mode " + std::to_string(r.mode) + ", selector " +
         std::to_string(r.selector) + ", limit " + std::to_string(r.min_padded) + ", divisor " +
         std::to_string(r.divisor) + ", extra " + std::to_string(r.want_extra) + ", allowed " +
         std::to_string(r.tiling_allowed);
}

inline Size full(const harness::Gpu& gpu, const Request& r) {
  Size out;
  gpu->compute_fmt_aligned_width_and_height(r.width, r.height, r.plane, r.format, r.samples, r.mode,
                                            r.selector, r.min_padded, &out.width, &out.height);
  return out;
}

inline Size fdm(const harness::Gpu& gpu, const Request& r) {
  Size out;
  gpu->compute_fmt_aligned_width_and_height_fdm(r.width, r.height, r.plane, r.format, r.samples,
                                                r.mode, r.selector, r.min_padded, r.divisor,
                                                r.want_extra, &out.width, &out.height);
  return out;
}

inline Size minimal(const harness::Gpu& gpu, const Request& r) {
  Size out;
  gpu->compute_fmt_minimal_aligned_width_and_height(
      r.width, r.height, r.plane, r.format, r.samples, r.mode, r.tiling_allowed, r.selector,
      r.min_padded, r.divisor, r.want_extra, &out.width, &out.height);
  return out;
}

// A chip of the family 7 whose model has no pitch limit of its own.
inline const harness::ChipData& chip_without_pitch_limit() {
  return harness::chip_where("of family 7 and without a pitch limit", [](const auto& chip) {
    return chip.family_id == 7 && chip.supported && harness::model_of(chip).max_surface_pitch == 0;
  });
}

// A chip that is identified but whose surfaces no rules are known for.
inline const harness::ChipData& unsupported_chip() {
  return harness::chip_where("identified but not supported",
                             [](const auto& chip) { return !chip.supported; });
}

inline constexpr uint32_t kFamilies[] = {5, 6, 7};

}  // namespace align_test
