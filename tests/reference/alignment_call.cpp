#include "tests/reference/alignment_call.h"

#include <gtest/gtest.h>

#include <ostream>
#include <sstream>

#include "tests/reference/difference.h"

namespace comparison {

namespace {

// An export, what it takes of the arguments beyond those that all take, and what it stores.
struct Entry {
  const char* name;
  bool takes_tiling_allowed;
  bool takes_divisor_and_padding;
  const char* stored[4];  // null behind the last
};

constexpr Entry kFull = {
    "compute_fmt_aligned_width_and_height", false, false, {"out_width", "out_height"}};
constexpr Entry kMinimal = {
    "compute_fmt_minimal_aligned_width_and_height", true, true, {"out_width", "out_height"}};
constexpr Entry kFdm = {
    "compute_fmt_aligned_width_and_height_fdm", false, true, {"out_width", "out_height"}};
constexpr Entry kInBytes = {
    "compute_fmt_aligned_width_and_height_in_bytes",
    false,
    false,
    {"aligned_row_bytes", "minimal_row_bytes", "aligned_height", "tiling_mode"}};

void print_arguments(std::ostream& out, const AlignmentCall& c, const Entry& entry) {
  out << "width " << c.width << ", height " << c.height << ", plane " << c.plane << ", format "
      << c.format << ", samples " << c.samples << ", tiling_mode " << c.tiling_mode;
  if (entry.takes_tiling_allowed) out << ", tiling_allowed " << c.tiling_allowed;
  out << ", selector " << c.selector << ", min_padded_row_bytes " << c.min_padded_row_bytes;
  if (entry.takes_divisor_and_padding) {
    out << ", divisor " << c.divisor << ", want_extra_padding " << c.want_extra_padding;
  }
}

// What an entry stores, over presets that nothing computes.
struct Answer {
  uint32_t words[4] = {0xCCCCCCCC, 0xCCCCCCCC, 0xCCCCCCCC, 0xCCCCCCCC};
  bool answered = true;

  // What a faulting call stored by then is not fixed.
  bool operator==(const Answer& other) const {
    if (!answered || !other.answered) return answered == other.answered;
    return words[0] == other.words[0] && words[1] == other.words[1] && words[2] == other.words[2] &&
           words[3] == other.words[3];
  }
};

void report_difference(const Entry& entry, const Pair& pair, const AlignmentCall& c,
                       const Answer& actual, const Answer& expected) {
  std::ostringstream text;
  text << entry.name << "(";
  print_arguments(text, c, entry);
  text << ") on chip 0x" << std::hex << pair.process.chip.chip_id << std::dec << ":";
  if (actual.answered != expected.answered) {
    text << (actual.answered ? " an answer, expected the division fault"
                             : " the division fault, expected an answer");
  } else {
    for (int i = 0; i < 4; ++i) {
      if (actual.words[i] == expected.words[i]) continue;
      const char* const name = entry.stored[i] != nullptr ? entry.stored[i] : "nothing to store";
      text << "\n  " << name << " " << difference(actual.words[i], expected.words[i]);
    }
  }
  ADD_FAILURE() << text.str();
}

// Runs one entry on both sides: library(answer), reference(answer).
template <typename LibraryCall, typename ReferenceCall>
bool same(const Entry& entry, Pair& pair, const AlignmentCall& c, harness::FaultTrap& trap,
          Counts& counts, LibraryCall library, ReferenceCall reference) {
  Answer actual;
  Answer expected;
  expected.answered = reference_answers([&] { reference(expected); });
  actual.answered = trap.answers([&] { library(actual); });
  ++counts.calls;
  if (!expected.answered) ++counts.faults;
  if (actual == expected) return true;
  report_difference(entry, pair, c, actual, expected);
  return false;
}

template <typename Align>
void align_in_bytes(const AlignmentCall& c, Answer& answer, Align align) {
  answer.words[3] = c.tiling_mode;
  const AlignInBytesParams params = {
      c.width,         c.height, c.plane, c.format, c.samples, c.selector, c.min_padded_row_bytes,
      &answer.words[3]};
  const AlignInBytesResult result = {&answer.words[0], &answer.words[1], &answer.words[2]};
  align(&params, &result);
}

}  // namespace

std::ostream& operator<<(std::ostream& out, const AlignmentCall& c) {
  print_arguments(out, c, kMinimal);
  return out;
}

bool compare_alignments(Pair& pair, harness::FaultTrap& trap, const AlignmentCall& c,
                        Counts& counts) {
  const harness::Library& library = pair.gpu.library();
  return same(
             kFull, pair, c, trap, counts,
             [&](Answer& a) {
               library.compute_fmt_aligned_width_and_height(
                   c.width, c.height, c.plane, c.format, c.samples, c.tiling_mode, c.selector,
                   c.min_padded_row_bytes, &a.words[0], &a.words[1]);
             },
             [&](Answer& a) {
               reference::compute_fmt_aligned_width_and_height(
                   pair.process, c.width, c.height, c.plane, c.format, c.samples, c.tiling_mode,
                   c.selector, c.min_padded_row_bytes, &a.words[0], &a.words[1]);
             }) &&
         same(
             kMinimal, pair, c, trap, counts,
             [&](Answer& a) {
               library.compute_fmt_minimal_aligned_width_and_height(
                   c.width, c.height, c.plane, c.format, c.samples, c.tiling_mode, c.tiling_allowed,
                   c.selector, c.min_padded_row_bytes, c.divisor, c.want_extra_padding, &a.words[0],
                   &a.words[1]);
             },
             [&](Answer& a) {
               reference::compute_fmt_minimal_aligned_width_and_height(
                   pair.process, c.width, c.height, c.plane, c.format, c.samples, c.tiling_mode,
                   c.tiling_allowed, c.selector, c.min_padded_row_bytes, c.divisor,
                   c.want_extra_padding, &a.words[0], &a.words[1]);
             }) &&
         same(
             kFdm, pair, c, trap, counts,
             [&](Answer& a) {
               library.compute_fmt_aligned_width_and_height_fdm(
                   c.width, c.height, c.plane, c.format, c.samples, c.tiling_mode, c.selector,
                   c.min_padded_row_bytes, c.divisor, c.want_extra_padding, &a.words[0],
                   &a.words[1]);
             },
             [&](Answer& a) {
               reference::compute_fmt_aligned_width_and_height_fdm(
                   pair.process, c.width, c.height, c.plane, c.format, c.samples, c.tiling_mode,
                   c.selector, c.min_padded_row_bytes, c.divisor, c.want_extra_padding, &a.words[0],
                   &a.words[1]);
             }) &&
         same(
             kInBytes, pair, c, trap, counts,
             [&](Answer& a) {
               align_in_bytes(c, a, library.compute_fmt_aligned_width_and_height_in_bytes);
             },
             [&](Answer& a) {
               align_in_bytes(c, a, [&](auto* params, auto* result) {
                 reference::compute_fmt_aligned_width_and_height_in_bytes(pair.process, params,
                                                                          result);
               });
             });
}

}  // namespace comparison
