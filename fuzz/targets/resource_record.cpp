// validate_resource_memory_layout_metadata on valid records with edited words
#include "fuzz/fuzz_target.h"
#include "fuzz/record_edits.h"
#include "fuzz/validator_property.h"

int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  using Kind = fuzz::ResourceKind;
  fuzz::InputBytes input(data, size);
  const std::size_t place = input.u8() % fuzz::kPlaces;
  const Kind::Record record = fuzz::draw_edited_record<Kind>(input);
  fuzz::check_validator<Kind>({reinterpret_cast<const uint8_t*>(&record), sizeof record}, place);
  return 0;
}
