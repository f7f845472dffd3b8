// The two validators, called on watched records and on others.
#pragma once

#include <cstring>
#include <string>
#include <vector>

#include "tests/fetches/checked_words.h"
#include "tests/fetches/watched_memory.h"
#include "tests/harness/chips.h"
#include "tests/harness/gpu.h"
#include "tests/records/valid_record.h"

namespace fetches {

struct ResourceKind : records::ResourceKind {
  static auto entry(const harness::Gpu& gpu) {
    return gpu->validate_resource_memory_layout_metadata;
  }
};

struct SurfaceKind : records::SurfaceKind {
  static auto entry(const harness::Gpu& gpu) { return gpu->validate_surface_metadata; }
};

struct KindName {
  template <typename Kind>
  static std::string GetName(int) {
    return std::is_same_v<Kind, ResourceKind> ? "Resource" : "Surface";
  }
};

// Result and message of a call; the message is empty where the record is accepted.
struct Verdict {
  uint32_t result = 0;
  std::string message;

  bool accepted() const { return result == KORVEL_SUCCESS && message.empty(); }
  friend bool operator==(const Verdict&, const Verdict&) = default;
};

inline std::ostream& operator<<(std::ostream& out, const Verdict& verdict) {
  return out << verdict.result << " \"" << verdict.message << "\"";
}

inline Verdict verdict_of(harness::Gpu& gpu, uint32_t result) {
  Verdict verdict = {.result = result, .message = {}};
  for (const harness::Message& message : gpu.take_messages()) verdict.message += message.text;
  return verdict;
}

// Every record of these tests is stored, and read, by the machine with these.
inline const records::Uuids kUuids = records::Shape{}.uuids;

template <typename Kind>
Verdict unwatched_verdict(harness::Gpu& gpu, const typename Kind::Record& record) {
  return verdict_of(gpu, Kind::entry(gpu)(&record, kUuids.device, kUuids.driver));
}

struct WatchedVerdict {
  Verdict verdict;
  Trace trace;
};

// On the record that the memory holds.
template <typename Kind>
WatchedVerdict watched_verdict(harness::Gpu& gpu, WatchedMemory& memory) {
  uint32_t result = 0;
  const auto validate = Kind::entry(gpu);
  Trace trace =
      memory.watch([&] { result = validate(memory.data(), kUuids.device, kUuids.driver); });
  return {verdict_of(gpu, result), std::move(trace)};
}

inline uint64_t word_in(const void* record, const Word& word) {
  uint64_t number = 0;
  std::memcpy(&number, static_cast<const unsigned char*>(record) + word.offset_bytes, word.bytes);
  return number;
}

inline void put_word(void* record, const Word& word, uint64_t number) {
  std::memcpy(static_cast<unsigned char*>(record) + word.offset_bytes, &number, word.bytes);
}

// Fifteen tiled levels of three planes, with every buffer that there is.
template <typename Kind>
typename Kind::Record full_record() {
  return records::valid_record<Kind>({.levels = KORVEL_MAX_LEVELS, .slices = 4});
}

// The same without depth buffers, which validators may have a quicker way for.
template <typename Kind>
typename Kind::Record plain_record(uint32_t slices) {
  return records::valid_record<Kind>({.levels = KORVEL_MAX_LEVELS, .slices = slices, .lrz = false});
}

// Full, but tiled in seven levels and linear in the rest.
template <typename Kind>
typename Kind::Record fallback_record() {
  return records::valid_record<Kind>(
      {.levels = KORVEL_MAX_LEVELS, .first_linear_level = 7, .slices = 4});
}

}  // namespace fetches
