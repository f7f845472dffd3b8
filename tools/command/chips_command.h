// `chips`: the chip rows of the hardware data.
#pragma once

namespace tool {

// Returns the program's exit code. Throws BadInput.
int list_chips(bool json);

}  // namespace tool
