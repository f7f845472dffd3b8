// How a number of a layout comes about, as the lines that hovering over it shows.
#pragma once

#include <string>

#include "tools/explanation/explanation.h"

namespace tool {

// A line with the number of each step and one with its reason. Empty for a field without steps.
std::string field_words(const Explanation& explanation, const std::string& field);

}  // namespace tool
