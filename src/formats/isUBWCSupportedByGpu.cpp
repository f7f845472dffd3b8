#include <korvel_utils.h>
#include "formats/ubwc_formats.h"
#include "identify/gpu_identity.h"

namespace korvel {
namespace {

// One bit of both masks is no group: every format has it, and the row that stands for no
// identification yet. What the masks have in common is then negative, and the GPU is asked for.
constexpr auto kNotIdentified = static_cast<int8_t>(-128);

struct UbwcTables {
  std::array<int8_t, kFormatCount> of_format;
  std::array<int8_t, kChipRowCount> of_chip;
};

constexpr UbwcTables kTables = [] {
  UbwcTables tables{};
  for (uint32_t id = 0; id < kFormatCount; ++id) {
    tables.of_format[id] = static_cast<int8_t>(kUbwcGroupOf[id] | kNotIdentified);
  }
  for (uint32_t row = 0; row < kChipRowCount; ++row) {
    tables.of_chip[row] = static_cast<int8_t>(kChipRows[row].ubwc);
  }
  tables.of_chip[kRowNotIdentified] = kNotIdentified;
  return tables;
}();

// The first call, and formats beyond the table. Apart, so that all others need no stack.
[[gnu::cold, gnu::noinline]] uint32_t answer_otherwise(uint32_t format) {
  return ubwc_supported(identified_chip(), format);
}

}  // namespace
}  // namespace korvel

uint32_t isUBWCSupportedByGpu(uint32_t format) {
  if (format >= korvel::kFormatCount) [[unlikely]]
    return korvel::answer_otherwise(format);
  const int groups =
      korvel::kTables.of_chip[korvel::known_row()] & korvel::kTables.of_format[format];
  if (groups < 0) [[unlikely]]
    return korvel::answer_otherwise(format);
  return groups != 0;
}
