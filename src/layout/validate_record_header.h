// Header checks that both validators make.
#pragma once

#include <korvel_utils.h>

#include <cstddef>
#include <cstdint>

#include "formats/format_ids.h"
#include "identify/uuid.h"
#include "layout/record_limits.h"
#include "layout/stored_word.h"
#include "platform/log.h"
#include "platform/rounding.h"

namespace korvel {

// The two UUIDs of a mismatch as text.
struct UuidTexts {
  char stored[64];
  char callers[64];
};

[[gnu::cold]] inline UuidTexts uuid_texts(const unsigned char* stored, const uint8_t* callers) {
  UuidTexts texts;
  texts.stored[0] = texts.callers[0] = '\0';
  print_uuid(texts.stored, sizeof texts.stored, stored);
  print_uuid(texts.callers, sizeof texts.callers, callers);
  return texts;
}

inline bool uuids_equal(const unsigned char* stored, const uint8_t* callers) {
  return stored_word<uint64_t>(stored, 0) == stored_word<uint64_t>(callers, 0) &&
         stored_word<uint64_t>(stored, 8) == stored_word<uint64_t>(callers, 8);
}

inline uint32_t uuid_word(const unsigned char* uuid, std::size_t word) {
  return stored_word<uint32_t>(uuid, word * sizeof(uint32_t));
}

inline bool is_alignment(uint32_t alignment) {
  return alignment != 0 && is_power_of_two_or_zero(alignment);
}

// Samples, levels and format, in this order.
inline bool shape_passes(const char* validator, uint32_t samples, uint32_t levels,
                         FormatId format) {
  if (!is_layout_sample_count(samples)) {
    KORVEL_LOG(validator, "Metadata samples invalid count %u", samples);
    return false;
  }
  if (levels == 0 || levels > KORVEL_MAX_LEVELS) {
    KORVEL_LOG(validator, "Metadata levels is invalid value %u", levels);
    return false;
  }
  // Every record of the format table has an element size.
  if (format >= kFormatCount) {
    KORVEL_LOG(validator, "Metadata format is not recognized %u", format);
    return false;
  }
  return true;
}

}  // namespace korvel
