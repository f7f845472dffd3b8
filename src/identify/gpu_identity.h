// Which GPU this process runs on: the library's only state.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>

#include "identify/chip_row.h"

namespace korvel {

// Two words stand for the identity. The chip's family id, model code and revision id are constants
// of its row and are not stored again: whoever sees the row sees all of them, without a lock.
//
// Racing first calls store the same values. The row is loaded as plainly as the processor can; only
// messages, which print the chip id, wait for the id that belongs to the row.
struct GpuIdentity {
  std::atomic<uint32_t> chip_id{kChipIdNotIdentified};  // 0 after a failed device query
  std::atomic<uint32_t> row{kRowNotIdentified};         // stored last, and released
};

// Hidden at its declaration too, so that it is one load away and not two.
// NOLINTNEXTLINE(bugprone-dynamic-static-initializers): constinit says it is not
[[gnu::visibility("hidden")]] extern constinit GpuIdentity gpu_identity;

// Asks the services library for the chip id and finds its row. Returns the row's number;
// kRowNotIdentified when the services library could not be opened or the device reported
// 0xFFFFFFFF, so that the next call asks again.
[[gnu::cold]] std::size_t identify_gpu();

// The number of the chip's row as far as it is known; kRowNotIdentified before the first need.
inline std::size_t known_row() {
  return gpu_identity.row.load(std::memory_order_relaxed);
}

// The guard at the top of every GPU-dependent entry: the number of the chip's row, identified on
// first need.
inline std::size_t identified_row() {
  const std::size_t row = known_row();
  return row != kRowNotIdentified ? row : identify_gpu();
}

inline const ChipRow& identified_chip() {
  return kChipRows[identified_row()];
}

// The chip id as the device gave it, for messages: rows know only the ids of known chips.
inline uint32_t reported_chip_id() {
  static_cast<void>(gpu_identity.row.load(std::memory_order_acquire));
  return gpu_identity.chip_id.load(std::memory_order_relaxed);
}

}  // namespace korvel
