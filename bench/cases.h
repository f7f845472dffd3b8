// One call of each export, ready to be timed or counted.
#pragma once

#include <cstddef>
#include <span>

#include "tests/harness/library.h"

namespace bench {

struct Case {
  const char* name;
  const char* function;  // the C function that the case calls
  const char* floor;     // the name of the floor it is held against, or null
  void (*run)();
};

// Exports first, then the floors. The first case calls nothing: what it costs is the measuring
// itself.
std::span<const Case> cases();

// Loads the library, identifies a family-6 GPU and fills the records that the cases read. Cases of
// random formats run through `formats` of them and begin again.
const harness::Library& prepare(std::size_t formats);

}  // namespace bench
