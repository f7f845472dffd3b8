#include "fuzz/caller_record.h"

#include <cstring>

#include "fuzz/broken_property.h"
#include "fuzz/drawn_arguments.h"

namespace fuzz {
namespace {

uint32_t draw_alignment(InputBytes& input) {
  const uint8_t drawn = input.u8();
  if (drawn < 0xC0) return 4096;
  return drawn < 0xF0 ? 1U << (drawn % 32) : input.u32();
}

uint32_t draw_record_size(InputBytes& input) {
  const uint8_t drawn = input.u8();
  return drawn < 0xF0 ? KORVEL_LAYOUT_BYTES_VERSION_3 : input.u32();
}

}  // namespace

CallerRecord draw_caller_record(InputBytes& input, const Machine& machine,
                                const SurfaceArguments& arguments) {
  CallerRecord caller;
  MemoryLayout& record = caller.record;
  const uint32_t levels = draw_count(input, KORVEL_MAX_LEVELS);
  const uint8_t filling = input.u8();
  caller.zeroed = filling < 0xC0;
  std::memset(&record, caller.zeroed ? 0 : filling, sizeof record);

  const reference::Identity& identity = machine.process.identity;
  REQUIRE(machine.library.get_device_uuid(record.device_uuid, KORVEL_UUID_BYTES, identity.family_id,
                                          identity.model_code, identity.rev_id) == 0);
  REQUIRE(machine.library.get_driver_uuid(record.driver_uuid, KORVEL_UUID_BYTES) == 0);
  record.signature = KORVEL_LAYOUT_SIGNATURE;
  record.size = draw_record_size(input);
  record.alignment = draw_alignment(input);
  record.format = arguments.format;
  record.samples = arguments.samples;
  record.linear_fallback = 0;
  record.levels = levels;
  return caller;
}

}  // namespace fuzz
