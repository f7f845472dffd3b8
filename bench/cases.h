// One call of each export, ready to be timed or counted.
#pragma once

#include <span>

namespace bench {

struct Case {
  const char* name;
  void (*run)();
};

// The first case calls nothing: what it costs is the measuring itself.
std::span<const Case> cases();

// Identifies a family-6 GPU and fills the records that the cases read.
void prepare();

}  // namespace bench
