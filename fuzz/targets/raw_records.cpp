// Both validators on raw bytes
#include <algorithm>

#include "fuzz/fuzz_target.h"
#include "fuzz/raw_record.h"
#include "fuzz/validator_property.h"

namespace {

template <typename Kind>
void check(std::span<const uint8_t> bytes, std::size_t place) {
  typename Kind::Record record = {};
  std::copy_n(bytes.data(), std::min(bytes.size(), sizeof record),
              reinterpret_cast<uint8_t*>(&record));
  fuzz::check_validator<Kind>({reinterpret_cast<const uint8_t*>(&record), sizeof record},
                              place % fuzz::kPlaces);
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  fuzz::InputBytes input(data, size);
  const uint8_t first = input.u8();
  const std::span<const uint8_t> bytes = input.rest();
  if (fuzz::is_surface_input(first)) {
    check<fuzz::SurfaceKind>(bytes, fuzz::place_of(first));
  } else {
    check<fuzz::ResourceKind>(bytes, fuzz::place_of(first));
  }
  return 0;
}
