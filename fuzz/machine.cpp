#include "fuzz/machine.h"

#include <cstring>
#include <vector>

#include "fuzz/library_copy.h"
#include "simulator/hxl_sim.h"
#include "tests/harness/chips.h"
#include "tests/reference/chip_facts.h"

namespace fuzz {
namespace {

using harness::in_every_column;
using korvel::ChipColumns;
using korvel::ChipData;

constexpr uint32_t kFullChips = 3;

void prepare_services() {
  hxl_sim_reset();
  hxl_sim_set_capture(1);
  hxl_sim_set_recording(0);
}

Machine start(const char* name, const reference::ChipFacts& facts, uint32_t failures = 0) {
  [[maybe_unused]] static const bool ready = (prepare_services(), true);
  hxl_sim_set_chip(facts.chip_id);
  hxl_sim_set_failures(failures);
  Machine machine{name, {}, load_library_copy(), failures};
  machine.process.chip = facts;
  machine.process.device.library_open_result = (failures & HXL_SIM_FAIL_LIBRARY_OPEN) != 0 ? 1 : 0;
  machine.process.device.handle = (failures & HXL_SIM_FAIL_DEVICE_OPEN) != 0 ? 0 : 1;
  // Both sides learn their chip.
  reference::get_gpu_pixel_alignment(machine.process);
  machine.library.get_gpu_pixel_alignment();
  forget_messages(machine);
  return machine;
}

const ChipData& compressing_chip(uint32_t family_id) {
  return harness::chip_where("full and compressing", [family_id](const ChipData& chip) {
    return chip.family_id == family_id && chip.supported && in_every_column(chip.columns) &&
           !chip.ubwc.never && (chip.ubwc.yuv_a || chip.ubwc.yuv_b) &&
           (family_id != 7 || (chip.ubwc.yuv16 && harness::model_of(chip).max_surface_pitch != 0));
  });
}

const ChipData& chip_lacking(bool ChipColumns::*column, uint32_t family_id) {
  return harness::chip_where("lacking the one column", [=](const ChipData& chip) {
    ChipColumns columns = chip.columns;
    columns.*column = columns.small_alignment = columns.wide_enough_for_tiling = true;
    return chip.family_id == family_id && !(chip.columns.*column) && in_every_column(columns) &&
           chip.supported;
  });
}

std::vector<Machine> start_machines() {
  using comparison::facts_of;
  using comparison::facts_of_unknown_chip;
  const auto lacking = [](const char* name, bool ChipColumns::*column, uint32_t family_id) {
    return start(name, facts_of(chip_lacking(column, family_id)));
  };
  std::vector<Machine> machines;
  machines.push_back(start("family 5", facts_of(compressing_chip(5))));
  machines.push_back(start("family 6", facts_of(compressing_chip(6))));
  machines.push_back(start("family 7", facts_of(compressing_chip(7))));
  machines.push_back(
      start("family 7 without a pitch limit",
            facts_of(harness::chip_where(
                "full, of family 7 and without a pitch limit", [](const ChipData& chip) {
                  return chip.family_id == 7 && chip.supported && in_every_column(chip.columns) &&
                         harness::model_of(chip).max_surface_pitch == 0;
                }))));
  machines.push_back(lacking("no base alignment", &ChipColumns::base_alignment, 7));
  machines.push_back(lacking("no linear alignment", &ChipColumns::linear_alignment, 6));
  machines.push_back(lacking("no auxiliary alignment", &ChipColumns::aux_alignment, 6));
  machines.push_back(lacking("no pixel alignment", &ChipColumns::pixel_alignment, 5));
  machines.push_back(lacking("no tiled alignment", &ChipColumns::tiled_alignment, 6));
  machines.push_back(lacking("no least level extent", &ChipColumns::min_level_extent, 7));
  machines.push_back(lacking("no level offset alignment", &ChipColumns::level_offset_alignment, 5));
  machines.push_back(lacking("no level size alignment", &ChipColumns::level_size_alignment, 7));
  machines.push_back(start("never compressing", facts_of(harness::chip_where(
                                                    "never compressing", [](const ChipData& chip) {
                                                      return chip.ubwc.never;
                                                    }))));
  machines.push_back(start(
      "without alignment rules",
      facts_of(harness::chip_where(
          "in every column and without alignment rules",
          [](const ChipData& chip) { return !chip.supported && in_every_column(chip.columns); }))));
  machines.push_back(start("unknown chip", facts_of_unknown_chip(harness::kUnknownChip)));
  machines.push_back(start("no device", facts_of_unknown_chip(0), HXL_SIM_FAIL_DEVICE_OPEN));
  // Asks again at every call.
  machines.push_back(start("no services", facts_of_unknown_chip(0), HXL_SIM_FAIL_LIBRARY_OPEN));
  return machines;
}

std::vector<Machine>& machines() {
  static std::vector<Machine> all = start_machines();
  return all;
}

}  // namespace

Machine& draw_machine(InputBytes& input) {
  const uint32_t drawn = input.u8();
  const std::size_t count = machines().size();
  return machines()[drawn < 128 ? drawn % kFullChips : drawn % count];
}

Machine& usual_machine() {
  static Machine usual = start("family 6", comparison::facts_of(compressing_chip(6)));
  return usual;
}

void switch_services_to(const Machine& machine) {
  static uint32_t current = ~machine.failures;
  if (current == machine.failures) return;
  current = machine.failures;
  hxl_sim_set_failures(current);
}

void require_same_messages(const Machine& machine) {
  const std::vector<reference::Message>& expected = machine.process.messages;
  REQUIRE(hxl_sim_message_count() == expected.size());
  hxl_sim_message_record said;
  for (std::size_t i = 0; i < expected.size(); ++i) {
    REQUIRE(hxl_sim_message(i, &said) == 1);
    REQUIRE(expected[i].function == said.function);
    REQUIRE(expected[i].text == said.text);
  }
  REQUIRE(hxl_sim_misuse_count() == 0);
}

void forget_messages(Machine& machine) {
  if (hxl_sim_message_count() != 0) hxl_sim_clear_messages();
  machine.process.messages.clear();
  machine.process.service_calls.clear();
}

}  // namespace fuzz
