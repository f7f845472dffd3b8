// Formats whose element size is no power of two borrow the element size of a larger format.
#pragma once

#include <cstdint>

#include "formats/format_ids.h"
#include "formats/format_table.h"
#include "platform/rounding.h"

namespace korvel {

// By element size. `format` is below kFormatCount.
constexpr FormatId npot_substitute_format(FormatId format) {
  const uint32_t bytes = format_record(format).bytes;
  if (is_power_of_two_or_zero(bytes)) return format;
  switch (bytes) {
    case 3: return kFormatR8G8B8A8Unorm;
    case 6: return kFormatR16G16B16A16Unorm;
    default: return kFormatR32G32B32A32Unorm;
  }
}

// By list, as the base widths of families 6 and 7 have it.
inline constexpr IdRange kListed3ByteFormats[] = {{508}, {510}, {513},     {516},
                                                  {521}, {549}, {623, 624}};
inline constexpr IdRange kListed6ByteFormats[] = {{523}, {526}, {529}, {558}, {563}};
inline constexpr IdRange kListed12ByteFormats[] = {{5, 8}, {556}, {561}, {566}};

constexpr FormatId listed_substitute_format(FormatId format) {
  if (contains(kListed3ByteFormats, format)) return kFormatR8G8B8A8Unorm;
  if (contains(kListed6ByteFormats, format)) return kFormatR16G16B16A16Unorm;
  if (contains(kListed12ByteFormats, format)) return kFormatR32G32B32A32Unorm;
  return format;
}

// Both ways agree on the whole table, a second pass changes nothing, and neither ever takes the
// block flags away: one substitute element size per format serves all rules.
static_assert([] {
  for (FormatId id = 0; id < kFormatCount; ++id) {
    const FormatId substitute = npot_substitute_format(id);
    if (listed_substitute_format(id) != substitute) return false;
    if (npot_substitute_format(substitute) != substitute) return false;
    if (((format_record(substitute).flags ^ format_record(id).flags) & kFormatFlagsBlock) != 0) {
      return false;
    }
  }
  return true;
}());

}  // namespace korvel
