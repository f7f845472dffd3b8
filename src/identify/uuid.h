// UUIDs: 16 bytes built as four little-endian 32-bit words.
#pragma once

#include <korvel_utils.h>

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "platform/log.h"

namespace korvel {

static_assert(std::endian::native == std::endian::little, "UUID words are stored as they are");

using UuidWords = std::array<uint32_t, 4>;
static_assert(sizeof(UuidWords) == KORVEL_UUID_BYTES);

// The layout-compatibility identity of this library. The validators look at its words one by one.
inline constexpr UuidWords kDriverUuid = {4, 1, 3, 0};
inline constexpr std::size_t kDriverKindWord = 0;
inline constexpr std::size_t kDriverVersionWord = 1;
inline constexpr std::size_t kLayoutVersionWord = 2;

constexpr UuidWords device_uuid_words(uint32_t family_id, uint32_t model_code, uint32_t rev_id) {
  return {KORVEL_DEVICE_SIGNATURE, family_id, model_code, rev_id};
}

inline void store_uuid(uint8_t* out, const UuidWords& words) {
  std::memcpy(out, words.data(), KORVEL_UUID_BYTES);
}

// Stores to a caller's array of `out_length` bytes under the common contract of the UUID exports:
// 0, or -1 after a message of `function` when the array is too small.
inline int32_t store_uuid_checked(const char* function, uint8_t* out, int32_t out_length,
                                  const UuidWords& words) {
  if (out_length < KORVEL_UUID_BYTES) {
    KORVEL_LOG(function, "Length of uuid array is too small");
    return -1;
  }
  store_uuid(out, words);
  return 0;
}

// Prints 16 bytes in storage order. Returns the length of the whole text, 36, or what os_snprintf
// returns on failure.
int32_t print_uuid(char* text, std::size_t text_size, const uint8_t* uuid);

}  // namespace korvel
