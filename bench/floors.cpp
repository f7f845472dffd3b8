#include "bench/floors.h"

#include <korvel_utils.h>

#include <cstring>

namespace {

template <std::size_t kBytes>
void copy(unsigned char* to, const unsigned char* from, std::size_t offset) {
  std::memcpy(to + offset, from + offset, kBytes);
}

// The words of a level and its first plane that are always written.
void copy_level(unsigned char* to, const unsigned char* from, std::size_t level) {
  copy<offsetof(LevelLayout, padding_20)>(to, from, level);
  copy<offsetof(PlaneLayout, padding_52)>(to, from, level + offsetof(LevelLayout, plane));
  copy<sizeof(uint32_t)>(to, from, level + offsetof(LevelLayout, lrz_valid));
  copy<sizeof(uint32_t)>(to, from, level + offsetof(LevelLayout, lrz_fc_valid));
}

}  // namespace

uint32_t floor_look_up(const uint8_t* table, uint32_t count, uint32_t format) {
  return format < count ? table[format] : 0;
}

void floor_copy_layout(void* to, const void* from, uint32_t levels, int blob) {
  auto* target = static_cast<unsigned char*>(to);
  const auto* source = static_cast<const unsigned char*>(from);
  std::size_t record = 0;
  if (blob != 0) {
    record = offsetof(LayoutMetadata, layout);
    copy<offsetof(LayoutMetadata, layout) + offsetof(MemoryLayout, level)>(target, source, 0);
  } else {
    copy<sizeof(uint64_t)>(target, source, offsetof(MemoryLayout, total_size));
  }
  for (uint32_t l = 0; l < levels; ++l) {
    copy_level(target, source, record + offsetof(MemoryLayout, level) + l * sizeof(LevelLayout));
  }
  copy<sizeof(uint32_t)>(target, source, record + offsetof(MemoryLayout, extra_valid));
  copy<sizeof(uint32_t)>(target, source, record + offsetof(MemoryLayout, extended));
}

uint64_t floor_read(const void* record, std::size_t bytes) {
  const auto* source = static_cast<const unsigned char*>(record);
  uint64_t sum = 0;
  for (std::size_t offset = 0; offset + sizeof(uint64_t) <= bytes; offset += sizeof(uint64_t)) {
    uint64_t word;
    std::memcpy(&word, source + offset, sizeof word);
    sum ^= word;
  }
  return sum;
}
