// The mutator of the raw records' target. Random bytes fail at the signature; so nearly every
// mutation is followed by a repair of the words by which a record is taken for one, and checks
// behind them are reached.
#include <algorithm>
#include <cstring>

#include "fuzz/raw_record.h"
#include "fuzz/record_shape.h"

extern "C" {
std::size_t LLVMFuzzerMutate(uint8_t* data, std::size_t size, std::size_t max_size);
std::size_t LLVMFuzzerCustomMutator(uint8_t* data, std::size_t size, std::size_t max_size,
                                    unsigned int seed);
}

namespace {

// One mutation in so many stays as it came.
constexpr uint32_t kUnrepaired = 16;

template <typename Record>
void repair_header(Record& record) {
  if (record.levels == 0 || record.levels > KORVEL_MAX_LEVELS)
    record.levels = record.levels % 15 + 1;
  if (record.samples != 1 && record.samples != 2 && record.samples != 4) record.samples = 8;
  record.format %= 722;
  // The lowest bit that is set, and a surface of whole alignments.
  record.alignment = record.alignment == 0 ? 64 : record.alignment & (0U - record.alignment);
  const uint64_t surface = (record.total_size - record.size) & ~uint64_t{record.alignment - 1};
  record.total_size = record.size + surface;
  if (record.total_size == 0) record.total_size = record.size + uint64_t{record.alignment} * 16;
}

// The record at `bytes`, as much as is there, with a plausible header.
template <typename Kind>
std::size_t repair(uint8_t* bytes, std::size_t size, std::size_t max_size) {
  typename Kind::Record record = {};
  std::memcpy(&record, bytes, std::min(size, sizeof record));
  records::put_identity<Kind>(record, fuzz::usual_uuids());
  records::put_guid(record, records::Shape{}.guid);
  repair_header(record);
  const std::size_t repaired = std::min(sizeof record, max_size);
  std::memcpy(bytes, &record, repaired);
  return repaired;
}

template <typename Kind>
std::size_t store_valid(uint8_t* bytes, std::size_t max_size, uint32_t seed) {
  uint8_t drawn[2] = {};
  std::memcpy(drawn, &seed, sizeof drawn);
  fuzz::InputBytes input(drawn, sizeof drawn);
  const typename Kind::Record record = records::valid_record<Kind>(fuzz::draw_shape(input));
  const std::size_t stored = std::min(sizeof record, max_size);
  std::memcpy(bytes, &record, stored);
  return stored;
}

// Inputs begin to mean something behind the levels' first words.
constexpr std::size_t kLeastRecord = 512;

template <typename Kind>
std::size_t mutate_record(uint8_t* bytes, std::size_t size, std::size_t max_size, uint32_t seed) {
  if (size < kLeastRecord) return store_valid<Kind>(bytes, max_size, seed);
  const std::size_t mutated = LLVMFuzzerMutate(bytes, size, max_size);
  if (seed % kUnrepaired == 0) return mutated;
  return repair<Kind>(bytes, mutated, max_size);
}

}  // namespace

std::size_t LLVMFuzzerCustomMutator(uint8_t* data, std::size_t size, std::size_t max_size,
                                    unsigned int seed) {
  if (max_size < 2) return 0;
  if (size == 0) data[0] = static_cast<uint8_t>(seed >> 16);
  uint8_t* const record = data + 1;
  const std::size_t held = size == 0 ? 0 : size - 1;
  if (fuzz::is_surface_input(data[0])) {
    return 1 + mutate_record<fuzz::SurfaceKind>(record, held, max_size - 1, seed);
  }
  return 1 + mutate_record<fuzz::ResourceKind>(record, held, max_size - 1, seed);
}
