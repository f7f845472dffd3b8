// What `diff` says of two sides, whatever they were made of.
#pragma once

#include "tools/comparison/compared_side.h"

namespace tool {

// Prints it, with the warnings about the requests among the sides. Returns the program's exit code:
// that of a refusal when the two differ. Throws BadInput for sides that share no layout.
int report_difference(const ComparedSide& a, const ComparedSide& b, bool json);

}  // namespace tool
