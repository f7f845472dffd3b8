// The least that a call of each kind has to do, however the rules are computed.
#pragma once

#include <cstddef>
#include <cstdint>

extern "C" {

// A predicate: one dense look-up behind a call.
uint32_t floor_look_up(const uint8_t* table, uint32_t count, uint32_t format);

// A layout: a copy of the words that a record of `levels` levels of one plane has written. With
// `blob` the header and the identity too.
void floor_copy_layout(void* to, const void* from, uint32_t levels, int blob);

// A validator: one pass over the bytes that it reads.
uint64_t floor_read(const void* record, std::size_t bytes);
}
