// The alignment entries as calls with named arguments that return what they stored.
#pragma once

#include <gmock/gmock.h>

#include <climits>
#include <cstdint>
#include <ostream>
#include <sstream>
#include <string>
#include <vector>

#include "tests/harness/chips.h"
#include "tests/harness/faults.h"
#include "tests/harness/gpu.h"
#include "tests/harness/numbers.h"

namespace align_test {

constexpr uint32_t kLinear = 0;
constexpr uint32_t kTiled = 1;

// Formats that stand for their element size: kBytes4 is one of 4 bytes an element.
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
constexpr uint32_t kNoRecord = 722;  // the first number beyond the table: 1 byte an element

// No row is so long that a limit of this many bytes lets it be padded.
constexpr int32_t kNeverPad = INT_MAX;
// And every row, an empty one included, is longer than this.
constexpr int32_t kAlwaysPad = -1;

// In every output before the call.
constexpr uint32_t kCanary = 0xC0FFEE77;

// ---- Families -----------------------------------------------------------------------------------

inline constexpr uint32_t kFamilies[] = {5, 6, 7};
inline constexpr uint32_t kFamilies6And7[] = {6, 7};

// What is expected on each family. Families 6 and 7 have their rules in common, and so their
// expectations.
template <typename Expected>
struct ByFamily {
  Expected on_5;
  Expected on_6_and_7;

  const Expected& of(uint32_t family) const { return family == 5 ? on_5 : on_6_and_7; }
};

// ---- Sizes --------------------------------------------------------------------------------------

struct Size {
  uint32_t width_el = kCanary;
  uint32_t height_rows = kCanary;

  friend bool operator==(const Size&, const Size&) = default;
  friend std::vector<harness::NamedNumber> numbers_of(const Size& size) {
    return {{"width_el", size.width_el}, {"height_rows", size.height_rows}};
  }
  friend void PrintTo(const Size& size, std::ostream* out) {
    *out << size.width_el << " x " << size.height_rows;
  }
};

constexpr Size kUntouched = {};
constexpr Size kOneByOne = {1, 1};  // what the entries answer to a negative size

constexpr ByFamily<Size> on_all(Size size) {
  return {size, size};
}
constexpr ByFamily<uint32_t> on_all(uint32_t number) {
  return {number, number};
}

// ---- The entries that know formats --------------------------------------------------------------

// The arguments of all of them, and what they are where a test does not say.
struct Request {
  int32_t width_el = 1;
  int32_t height_rows = 1;
  uint32_t plane = 0;
  uint32_t format = kBytes4;
  uint32_t samples = 1;
  uint32_t tiling_mode = kTiled;
  uint32_t selector = 1;
  int32_t min_padded_row_bytes = 0;
  // Read by fdm() and minimal() only.
  uint32_t divisor = 1;
  uint32_t want_extra_padding = 0;
  // Read by minimal() only.
  uint32_t tiling_allowed = 0;
};

// What is not as usual, as a test would write it.
inline std::string describe(const Request& r) {
  std::ostringstream text;
  const char* separator = "";
  const auto add = [&](const char* name, int64_t value, int64_t usual) {
    if (value == usual) return;
    text << separator << '.' << name << " = " << value;
    separator = ", ";
  };
  text << '{';
  const Request usual;
  add("width_el", r.width_el, usual.width_el);
  add("height_rows", r.height_rows, usual.height_rows);
  add("plane", r.plane, usual.plane);
  add("format", r.format, usual.format);
  add("samples", r.samples, usual.samples);
  add("tiling_mode", r.tiling_mode, usual.tiling_mode);
  add("selector", r.selector, usual.selector);
  add("min_padded_row_bytes", r.min_padded_row_bytes, usual.min_padded_row_bytes);
  add("divisor", r.divisor, usual.divisor);
  add("want_extra_padding", r.want_extra_padding, usual.want_extra_padding);
  add("tiling_allowed", r.tiling_allowed, usual.tiling_allowed);
  text << '}';
  return text.str();
}

inline std::string describe(uint32_t family, const Request& r) {
  std::ostringstream text;
  text << "family " << family << ", " << describe(r);
  return text.str();
}

inline Size full(const harness::Library& library, const Request& r) {
  Size out;
  library.compute_fmt_aligned_width_and_height(
      r.width_el, r.height_rows, r.plane, r.format, r.samples, r.tiling_mode, r.selector,
      r.min_padded_row_bytes, &out.width_el, &out.height_rows);
  return out;
}

inline Size fdm(const harness::Library& library, const Request& r) {
  Size out;
  library.compute_fmt_aligned_width_and_height_fdm(
      r.width_el, r.height_rows, r.plane, r.format, r.samples, r.tiling_mode, r.selector,
      r.min_padded_row_bytes, r.divisor, r.want_extra_padding, &out.width_el, &out.height_rows);
  return out;
}

inline Size minimal(const harness::Library& library, const Request& r) {
  Size out;
  library.compute_fmt_minimal_aligned_width_and_height(
      r.width_el, r.height_rows, r.plane, r.format, r.samples, r.tiling_mode, r.tiling_allowed,
      r.selector, r.min_padded_row_bytes, r.divisor, r.want_extra_padding, &out.width_el,
      &out.height_rows);
  return out;
}

struct BytesAnswer {
  uint32_t minimal_row_bytes = kCanary;
  uint32_t aligned_row_bytes = kCanary;
  uint32_t height_rows = kCanary;
  uint32_t tiling_mode = kCanary;  // the caller's, after the call

  friend std::vector<harness::NamedNumber> numbers_of(const BytesAnswer& answer) {
    return {{"minimal_row_bytes", answer.minimal_row_bytes},
            {"aligned_row_bytes", answer.aligned_row_bytes},
            {"height_rows", answer.height_rows},
            {"tiling_mode", answer.tiling_mode}};
  }
};

inline BytesAnswer in_bytes(const harness::Library& library, const Request& r) {
  BytesAnswer answer;
  answer.tiling_mode = r.tiling_mode;
  const AlignInBytesParams params{.width = r.width_el,
                                  .height = r.height_rows,
                                  .plane = r.plane,
                                  .format = r.format,
                                  .samples = r.samples,
                                  .selector = r.selector,
                                  .min_padded_row_bytes = r.min_padded_row_bytes,
                                  .tiling_mode = &answer.tiling_mode};
  const AlignInBytesResult result{.aligned_row_bytes = &answer.aligned_row_bytes,
                                  .minimal_row_bytes = &answer.minimal_row_bytes,
                                  .aligned_height = &answer.height_rows};
  library.compute_fmt_aligned_width_and_height_in_bytes(&params, &result);
  return answer;
}

inline Size full(const harness::Gpu& gpu, const Request& r) {
  return full(gpu.library(), r);
}
inline Size fdm(const harness::Gpu& gpu, const Request& r) {
  return fdm(gpu.library(), r);
}
inline Size minimal(const harness::Gpu& gpu, const Request& r) {
  return minimal(gpu.library(), r);
}
inline BytesAnswer in_bytes(const harness::Gpu& gpu, const Request& r) {
  return in_bytes(gpu.library(), r);
}

// ---- The entries that know none -----------------------------------------------------------------

struct BasicRequest {
  int32_t width_px = 1;
  int32_t height_px = 1;
  uint32_t unread_3 = 3;
  uint32_t unread_4 = 4;
  uint32_t unread_5 = 5;
  uint32_t unread_6 = 6;
};

inline Size basic(const harness::Library& library, const BasicRequest& r) {
  Size out;
  library.compute_aligned_width_and_height(r.width_px, r.height_px, r.unread_3, r.unread_4,
                                           r.unread_5, r.unread_6, &out.width_el, &out.height_rows);
  return out;
}

struct PaddingRequest {
  int32_t width_px = 1;
  uint32_t unread_2 = 2;
  int32_t tiling_mode = kTiled;
  uint32_t unread_4 = 4;
  uint32_t unread_5 = 5;
};

inline uint32_t surface_padding(const harness::Library& library, const PaddingRequest& r) {
  return library.compute_surface_padding(r.width_px, r.unread_2, r.tiling_mode, r.unread_4,
                                         r.unread_5);
}

// ---- Chips --------------------------------------------------------------------------------------

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

// Runs the identification, so that what follows logs only what is its own.
inline void identify(harness::Gpu& gpu) {
  (void)gpu->get_gpu_pixel_alignment();
  (void)gpu.take_messages();
}

}  // namespace align_test
