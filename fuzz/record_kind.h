// The two kinds of stored record, as the validators' targets see them.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>

#include <korvel_utils.h>
#include "fuzz/machine.h"
#include "tests/records/record_kinds.h"
#include "tests/records/uuids.h"

namespace fuzz {

// Those of the machine that validates.
const records::Uuids& usual_uuids();

struct ResourceKind : records::ResourceKind {
  // What the validator may read of a record: a version ends where its size says.
  static std::size_t readable_bytes(std::span<const uint8_t> record);
  static uint32_t validate(const harness::Library& library, const void* record);
  static uint32_t rules(reference::Process& process, const void* record);
};

struct SurfaceKind : records::SurfaceKind {
  static std::size_t readable_bytes(std::span<const uint8_t>) { return kBytes; }
  static uint32_t validate(const harness::Library& library, const void* record);
  static uint32_t rules(reference::Process& process, const void* record);
};

}  // namespace fuzz
