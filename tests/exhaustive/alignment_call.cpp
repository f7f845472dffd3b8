#include "tests/exhaustive/alignment_call.h"

#include <gtest/gtest.h>

#include <ostream>

namespace exhaustive {

std::ostream& operator<<(std::ostream& out, const AlignmentCall& c) {
  return out << "size " << c.width << " x " << c.height << " plane " << c.plane << " format "
             << c.format << " samples " << c.samples << " tiling " << c.tiling_mode << " allowed "
             << c.tiling_allowed << " selector " << c.selector << " threshold " << c.threshold
             << " divisor " << c.divisor << " padding " << c.padding;
}

namespace {

// What an entry stores, from presets that nothing computes.
struct Answer {
  uint32_t words[4] = {0xCCCCCCCC, 0xCCCCCCCC, 0xCCCCCCCC, 0xCCCCCCCC};
  bool answered = true;

  bool operator==(const Answer& other) const {
    if (!answered || !other.answered) return answered == other.answered;
    return words[0] == other.words[0] && words[1] == other.words[1] && words[2] == other.words[2] &&
           words[3] == other.words[3];
  }
};

std::ostream& operator<<(std::ostream& out, const Answer& a) {
  if (!a.answered) return out << "the division fault";
  return out << a.words[0] << " " << a.words[1] << " " << a.words[2] << " " << a.words[3];
}

template <typename Align>
void in_bytes(const AlignmentCall& c, Answer& answer, Align align) {
  answer.words[3] = c.tiling_mode;
  const AlignInBytesParams params = {c.width,   c.height,   c.plane,     c.format,
                                     c.samples, c.selector, c.threshold, &answer.words[3]};
  const AlignInBytesResult result = {&answer.words[0], &answer.words[1], &answer.words[2]};
  align(&params, &result);
}

// Runs one entry on both sides: library(answer), reference(answer).
template <typename LibraryCall, typename ReferenceCall>
bool same(const char* entry, const AlignmentCall& c, harness::FaultTrap& trap, Counts& counts,
          LibraryCall library, ReferenceCall reference) {
  Answer actual;
  Answer expected;
  expected.answered = comparison::reference_answers([&] { reference(expected); });
  actual.answered = trap.answers([&] { library(actual); });
  ++counts.calls;
  if (!expected.answered) ++counts.faults;
  if (actual == expected) return true;
  ADD_FAILURE() << entry << ", " << c << ": " << actual << ", expected " << expected;
  return false;
}

}  // namespace

bool compare_alignments(comparison::Pair& pair, harness::FaultTrap& trap, const AlignmentCall& c,
                        Counts& counts) {
  const harness::Library& library = pair.gpu.library();
  return same(
             "full", c, trap, counts,
             [&](Answer& a) {
               library.compute_fmt_aligned_width_and_height(c.width, c.height, c.plane, c.format,
                                                            c.samples, c.tiling_mode, c.selector,
                                                            c.threshold, &a.words[0], &a.words[1]);
             },
             [&](Answer& a) {
               reference::compute_fmt_aligned_width_and_height(
                   pair.process, c.width, c.height, c.plane, c.format, c.samples, c.tiling_mode,
                   c.selector, c.threshold, &a.words[0], &a.words[1]);
             }) &&
         same(
             "minimal", c, trap, counts,
             [&](Answer& a) {
               library.compute_fmt_minimal_aligned_width_and_height(
                   c.width, c.height, c.plane, c.format, c.samples, c.tiling_mode, c.tiling_allowed,
                   c.selector, c.threshold, c.divisor, c.padding, &a.words[0], &a.words[1]);
             },
             [&](Answer& a) {
               reference::compute_fmt_minimal_aligned_width_and_height(
                   pair.process, c.width, c.height, c.plane, c.format, c.samples, c.tiling_mode,
                   c.tiling_allowed, c.selector, c.threshold, c.divisor, c.padding, &a.words[0],
                   &a.words[1]);
             }) &&
         same(
             "fdm", c, trap, counts,
             [&](Answer& a) {
               library.compute_fmt_aligned_width_and_height_fdm(
                   c.width, c.height, c.plane, c.format, c.samples, c.tiling_mode, c.selector,
                   c.threshold, c.divisor, c.padding, &a.words[0], &a.words[1]);
             },
             [&](Answer& a) {
               reference::compute_fmt_aligned_width_and_height_fdm(
                   pair.process, c.width, c.height, c.plane, c.format, c.samples, c.tiling_mode,
                   c.selector, c.threshold, c.divisor, c.padding, &a.words[0], &a.words[1]);
             }) &&
         same(
             "in bytes", c, trap, counts,
             [&](Answer& a) {
               in_bytes(c, a, library.compute_fmt_aligned_width_and_height_in_bytes);
             },
             [&](Answer& a) {
               in_bytes(c, a, [&](auto* params, auto* result) {
                 reference::compute_fmt_aligned_width_and_height_in_bytes(pair.process, params,
                                                                          result);
               });
             });
}

}  // namespace exhaustive
