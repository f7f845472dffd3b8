// Header checks that both validators make.
#pragma once

#include <korvel_utils.h>

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "formats/format_ids.h"
#include "identify/uuid.h"
#include "layout/record_limits.h"
#include "layout/stored_word.h"
#include "platform/log.h"
#include "platform/rounding.h"

namespace korvel {

// A UUID as it was read.
struct ReadUuid {
  uint64_t words_0_1;
  uint64_t words_2_3;
};

inline ReadUuid read_uuid(const unsigned char* uuid) {
  return {stored_word<uint64_t>(uuid, 0), stored_word<uint64_t>(uuid, sizeof(uint64_t))};
}

constexpr uint32_t uuid_word(const ReadUuid& uuid, std::size_t word) {
  const uint64_t pair = word < 2 ? uuid.words_0_1 : uuid.words_2_3;
  return static_cast<uint32_t>(word % 2 == 0 ? pair : pair >> 32);
}

// The two UUIDs of a mismatch as text.
struct UuidTexts {
  char stored[64];
  char callers[64];
};

[[gnu::cold]] inline UuidTexts uuid_texts(ReadUuid stored, ReadUuid callers) {
  // Two arrays: the stack protector of the DLLs does not see an array of arrays of bytes.
  uint8_t stored_bytes[KORVEL_UUID_BYTES];
  uint8_t callers_bytes[KORVEL_UUID_BYTES];
  std::memcpy(stored_bytes, &stored, sizeof stored);
  std::memcpy(callers_bytes, &callers, sizeof callers);
  UuidTexts texts;
  texts.stored[0] = texts.callers[0] = '\0';
  print_uuid(texts.stored, sizeof texts.stored, stored_bytes);
  print_uuid(texts.callers, sizeof texts.callers, callers_bytes);
  return texts;
}

inline bool device_uuid_passes(const char* validator, const ReadUuid& stored,
                               const ReadUuid& callers) {
  if (stored.words_0_1 == callers.words_0_1 && stored.words_2_3 == callers.words_2_3) return true;
  const UuidTexts texts = uuid_texts(stored, callers);
  KORVEL_LOG(validator, "Metadata device version mismatch {store uuid %s, struct uuid %s}",
             texts.stored, texts.callers);
  return false;
}

// The validators compare different words of the driver UUID.
inline bool driver_uuid_passes(const char* validator, const ReadUuid& stored,
                               const ReadUuid& callers, std::size_t word) {
  if (uuid_word(stored, word) == uuid_word(callers, word)) return true;
  const UuidTexts texts = uuid_texts(stored, callers);
  KORVEL_LOG(validator, "Metadata driver version mismatch {store uuid %s, struct uuid %s}",
             texts.stored, texts.callers);
  return false;
}

inline bool alignment_passes(const char* validator, uint32_t alignment) {
  if (alignment != 0 && is_power_of_two_or_zero(alignment)) return true;
  KORVEL_LOG(validator, "Metadata alignment is not pot %u", alignment);
  return false;
}

// `surface_size` are the bytes of the surface as the record counts them.
inline bool total_size_passes(const char* validator, uint64_t total_size, uint64_t surface_size,
                              uint32_t alignment) {
  if (total_size != 0 && (surface_size & (alignment - 1)) == 0) return true;
  KORVEL_LOG(validator, "Metadata surface size is not aligned {size %llu, alignment %u}",
             llu(total_size), alignment);
  return false;
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
