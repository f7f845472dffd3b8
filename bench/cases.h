// One call of each export, ready to be timed or counted.
#pragma once

#include <span>

namespace bench {

struct Case {
  const char* name;
  const char* function;  // the C function that the case measures
  const char* floor;     // the name of the floor it is held against, or null
  void (*run)();
};

// Exports first, then the floors. The first case calls nothing: what it costs is the measuring
// itself.
std::span<const Case> cases();

// Identifies a family-6 GPU and fills the records that the cases read.
void prepare();

}  // namespace bench
