#include <korvel_utils.h>

#include <cstddef>

#include "layout/stored_word.h"

uint64_t korvel_get_aligned_gpu_buffer_size(const void* blob) {
  if (blob == nullptr) return 0;
  const auto* bytes = static_cast<const unsigned char*>(blob);
  const auto record_offset =
      korvel::stored_word<uint32_t>(bytes, offsetof(MetadataHeader, record_offset));
  const unsigned char* record = bytes + record_offset;
  return korvel::stored_word<uint64_t>(record, offsetof(MemoryLayout, total_size)) -
         korvel::stored_word<uint32_t>(record, offsetof(MemoryLayout, size));
}
