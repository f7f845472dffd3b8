// What the capability predicates say of a GPU whose family is not known.
#pragma once

#include <cstdint>

#include "identify/chip_row.h"
#include "platform/log.h"

namespace korvel {

// `predicate` is the name that the message carries; the row is no chip's.
[[gnu::cold, gnu::noinline]] inline uint32_t answer_unknown_family(const char* predicate,
                                                                   uint32_t row) {
  KORVEL_LOG(predicate, "Unknown Family ID %u", kChipRows[row].family_id);
  return 0;
}

}  // namespace korvel
