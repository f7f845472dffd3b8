// The numbers of a step as text for people.
#pragma once

#include <string>

#include "tools/explanation/explanation.h"

namespace tool {

// "1920 elements", "yes"
std::string quantity_text(Quantity quantity);

// "1918 -> 1920 elements", "1080 texels -> 1080 rows"
std::string change_text(const Step& step);

}  // namespace tool
