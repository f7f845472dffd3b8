#include "tests/reference/chip_facts.h"

#include "tests/reference/chip_rows.h"

namespace comparison {

reference::ChipFacts facts_of(const korvel::ChipData& chip) {
  return reference::listed_chip(chip.chip_id);
}

reference::ChipFacts facts_of_unknown_chip(uint32_t chip_id) {
  reference::ChipFacts facts;
  facts.chip_id = chip_id;
  return facts;
}

}  // namespace comparison
