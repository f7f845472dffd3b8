#include "formats/ubwc_formats.h"
#include "identify/gpu_identity.h"
#include "include/korvel_utils.h"

namespace {

// The first call. Apart, so that all others need no stack.
[[gnu::cold, gnu::noinline]] uint32_t answer_first_call(uint32_t format) {
  return korvel::ubwc_supported(korvel::identified_chip(), format);
}

}  // namespace

uint32_t isUBWCSupportedByGpu(uint32_t format) {
  const uint32_t row = korvel::known_row();
  if (row == korvel::kRowNotIdentified) [[unlikely]]
    return answer_first_call(format);
  return korvel::ubwc_supported(korvel::kChipRows[row], format);
}
