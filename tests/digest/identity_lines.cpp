// The chip's properties, UUIDs, and the services library's failures.

#include "tests/digest/line.h"
#include "tests/harness/chips.h"
#include "tests/harness/fault_trap.h"

namespace digest {
namespace {

using harness::Gpu;

void add_properties(Line& line, harness::FaultTrap& trap, Gpu& gpu) {
  line.add(gpu->get_gpu_pixel_alignment());
  for (const uint32_t mode : {0U, 1U, 2U}) {
    uint32_t alignment = 0;
    const bool answered = trap.answers([&] { alignment = gpu->get_slice_pitch_alignment(mode); });
    line.add(answered ? alignment : kFault);
  }
  line.add_messages(gpu);
  line.end_case();
}

void add_every_chip(Lines& lines) {
  Line line("properties, every chip");
  harness::FaultTrap trap;
  for (const korvel::ChipData& chip : korvel::kChipData) {
    Gpu gpu(chip.chip_id);
    add_properties(line, trap, gpu);
  }
  lines.push_back(line);
}

void add_failures(Lines& lines) {
  Line line("identification, every failure of the services");
  harness::FaultTrap trap;
  for (const uint32_t failures : {0U, HXL_SIM_FAIL_LIBRARY_OPEN + 0U, HXL_SIM_FAIL_DEVICE_OPEN + 0U,
                                  HXL_SIM_FAIL_GETINFO + 0U, HXL_SIM_FAIL_GETINFO_EXT + 0U}) {
    for (const uint32_t chip_id : {harness::full_chip(6).chip_id, harness::kUnknownChip, 0U}) {
      Gpu gpu(chip_id, failures);
      hxl_sim_set_secure_context(0x12345);
      for (int call = 0; call < 2; ++call) add_properties(line, trap, gpu);
      line.add(gpu->isSecureContextSupportedByGpu());
      line.add_messages(gpu);
      for (const std::string& call : gpu.take_calls()) line.add_bytes(call.data(), call.size());
    }
  }
  lines.push_back(line);
}

// Each of the two properties asks for the GPU as long as the chip is not identified: the services
// cannot be opened, or the device reports the number that means so.
void add_unidentified_slice_pitch(Lines& lines) {
  Line line("slice pitch alignment, chip not identified");
  harness::FaultTrap trap;
  for (const uint32_t chip_id : {harness::full_chip(6).chip_id, 0xFFFFFFFFU}) {
    Gpu gpu(chip_id, chip_id == 0xFFFFFFFFU ? 0U : HXL_SIM_FAIL_LIBRARY_OPEN);
    for (const uint32_t mode : {0U, 1U, 2U}) {
      uint32_t alignment = 0;
      const bool answered = trap.answers([&] { alignment = gpu->get_slice_pitch_alignment(mode); });
      line.add(answered ? alignment : kFault);
      line.add_messages(gpu);
      for (const std::string& call : gpu.take_calls()) line.add_bytes(call.data(), call.size());
      line.end_case();
    }
  }
  lines.push_back(line);
}

void add_uuids(Lines& lines) {
  Line line("UUIDs");
  Gpu gpu(harness::full_chip(6).chip_id);
  for (const int32_t length : {-1, 0, 15, 16, 17}) {
    uint8_t uuid[3][KORVEL_UUID_BYTES] = {};
    line.add(static_cast<uint32_t>(gpu->get_device_uuid(uuid[0], length, 1, 2, 3)));
    line.add(static_cast<uint32_t>(gpu->get_override_device_uuid(uuid[1], length, 1, 2, 3, 65535)));
    line.add(static_cast<uint32_t>(gpu->get_driver_uuid(uuid[2], length)));
    line.add_bytes(uuid, sizeof uuid);
    line.end_case();
  }
  const uint8_t uuid[] = {0, 1, 0xF, 0x10, 0x7F, 0x80, 0xFF, 7, 8, 9, 10, 11, 12, 13, 14, 15};
  for (const uint32_t length : {0U, 15U, 16U, 17U}) {
    for (const int32_t size : {0, 1, 36, 37, 64}) {
      char text[64] = {};
      line.add(static_cast<uint32_t>(gpu->uuid_to_str(text, size, uuid, length)));
      line.add_bytes(text, sizeof text);
      line.end_case();
    }
  }
  line.add_messages(gpu);
  lines.push_back(line);
}

}  // namespace

void add_identity_lines(Lines& lines) {
  add_every_chip(lines);
  add_failures(lines);
  add_unidentified_slice_pitch(lines);
  add_uuids(lines);
}

}  // namespace digest
