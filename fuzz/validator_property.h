// The properties of a validator, for every record: its verdict and its one message are the rules',
// the record stays as it is, and nothing is read beyond it.
#pragma once

#include <cstdint>
#include <cstring>
#include <memory>
#include <span>

#include "fuzz/accepted_record.h"
#include "fuzz/record_kind.h"

namespace fuzz {

// Stored bytes may stand anywhere; so many places are tried.
inline constexpr std::size_t kPlaces = 8;

// `bytes` holds a whole record of the kind's longest version.
template <typename Kind>
void check_validator(std::span<const uint8_t> bytes, std::size_t place) {
  Machine& machine = usual_machine();
  // The record ends where its memory does, so that a sanitizer sees a read beyond it.
  const std::size_t readable = Kind::readable_bytes(bytes);
  const std::unique_ptr<uint8_t[]> memory(new uint8_t[place + readable]);
  uint8_t* const stored = memory.get() + place;
  std::memcpy(stored, bytes.data(), readable);

  uint32_t expected = 0;
  uint32_t verdict = 0;
  const bool answers = both_answer(
      machine, [&] { expected = Kind::rules(machine.process, bytes.data()); },
      [&] { verdict = Kind::validate(machine.library, stored); });
  REQUIRE(answers);
  REQUIRE(verdict == expected);
  REQUIRE(std::memcmp(stored, bytes.data(), readable) == 0);
  REQUIRE(verdict == KORVEL_SUCCESS || verdict == KORVEL_FAILURE);
  if (verdict != KORVEL_SUCCESS) return;
  typename Kind::Record record = {};
  std::memcpy(&record, bytes.data(), readable);
  require_accepted_record<Kind>(record);
}

}  // namespace fuzz
