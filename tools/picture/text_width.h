// How much room a text takes, without a font at hand.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tool {

enum class Weight : unsigned char { regular, bold };

// At least what common sans-serif fonts take, the wide ones among them.
double text_width_px(std::string_view text, double size_px, Weight weight = Weight::regular);

// Broken between words so that lines fit where they can.
std::vector<std::string> lines_of(std::string_view text, double width_px, double size_px,
                                  Weight weight = Weight::regular);

}  // namespace tool
