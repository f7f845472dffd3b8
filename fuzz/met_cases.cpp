#include "fuzz/met_cases.h"

#include <array>
#include <cstddef>

namespace fuzz {
namespace {

constexpr std::size_t kCases = static_cast<std::size_t>(Case::kCount);

// In the order of the enumeration.
constexpr std::string_view kNames[] = {
    "surface_is_exact", "surface_is_cut",         "surface_is_sign_extended",
    "surface_wraps",    "flag_buffer_inside",     "lrz_buffer_inside",
    "buffer_outside",   "image_rows_wrap",        "image_elements_wrap",
    "lrz_rows_wrap",    "check_warns_of_nothing", "check_warns",
    "record_in_hex",    "record_in_base64",       "files_differ",
    "layout_fits",      "layout_does_not_fit",    "layout_by_options",
};
static_assert(std::size(kNames) == kCases);

std::array<uint64_t, kCases> counts = {};

}  // namespace

void meet(Case met) {
  ++counts[static_cast<std::size_t>(met)];
}

uint64_t times_met(Case asked) {
  return counts[static_cast<std::size_t>(asked)];
}

std::string_view name_of(Case asked) {
  return kNames[static_cast<std::size_t>(asked)];
}

std::optional<Case> case_named(std::string_view name) {
  for (std::size_t i = 0; i < kCases; ++i) {
    if (kNames[i] == name) return static_cast<Case>(i);
  }
  return std::nullopt;
}

}  // namespace fuzz
