// The layouts that come to a number of bytes, as text for people and as JSON.
#pragma once

#include <nlohmann/json.hpp>
#include <string>

#include "tools/comparison/layout_guess.h"

namespace tool {

std::string guess_text(uint64_t bytes, const Guesses& guesses, const RequestLists& tried);
nlohmann::ordered_json guess_json(uint64_t bytes, const Guesses& guesses);

}  // namespace tool
