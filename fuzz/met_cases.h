// The cases that properties tell apart, counted. A property holds of nothing as well as of anything:
// the replay of the stored inputs fails when a case that they are to reach is not met.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace fuzz {

enum class Case : uint32_t {
  // Of accepted records: how the bound of the buffers stands to the bytes of the surface.
  surface_is_exact,
  surface_is_cut,            // to its low 32 bits, which are fewer
  surface_is_sign_extended,  // from its low 32 bits, to more
  surface_wraps,             // total_size is below the record's own size

  // Of buffers of accepted records.
  flag_buffer_inside,
  lrz_buffer_inside,
  buffer_outside,  // of a surface that is sign-extended or wraps

  // Of accepted images and LRZ buffers: a product of 2^32 and more that only its low half fits.
  image_rows_wrap,
  image_elements_wrap,
  lrz_rows_wrap,

  // Of the tool's verdicts on records that it accepts.
  check_warns_of_nothing,
  check_warns,

  // Of what else the tool reads.
  record_in_hex,
  record_in_base64,
  files_differ,
  layout_fits,
  layout_does_not_fit,
  layout_by_options,  // the same planes on the command line

  kCount,
};

void meet(Case met);
uint64_t times_met(Case asked);

std::string_view name_of(Case asked);
std::optional<Case> case_named(std::string_view name);

}  // namespace fuzz
