// What the library's validators say to a record of a file.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <korvel_utils.h>
#include "tools/record/stored_file.h"

namespace tool {

using Uuid = std::array<uint8_t, KORVEL_UUID_BYTES>;

struct Verdict {
  uint32_t result;                  // the validator's
  std::string reason;               // of a refusal, in words and with the record's numbers
  std::vector<std::string> limits;  // of an acceptance
};

// What the record of a file says. Words that its file does not hold are 0. Throws BadInput when the
// file holds no whole record.
MemoryLayout layout_record(const StoredFile& file);
SurfaceMetadata surface_record(const StoredFile& file);

// The device that the record names. Throws BadInput as above.
Uuid named_device(const StoredFile& file);

// Of a record for the device of this UUID; without one, for the device that the record names.
// Throws BadInput when the file holds no whole record.
Verdict judge(const StoredFile& file, const std::optional<Uuid>& device);

}  // namespace tool
