// The words of a blob that no arithmetic leads to: those that are asked for, those that are the same
// in every blob, the chip's own, and those of buffers that a layout does not have.
#pragma once

#include <string>

#include "identify/chip_row.h"
#include "tools/explanation/explanation.h"
#include "tools/request/surface_request.h"

namespace tool {

// A step for each word that no step of `whole`, the request's own explanation, gives. The four words
// of a UUID are fields of their own: "device_uuid[1]".
Explanation explain_words(const korvel::ChipRow& chip, const SurfaceRequest& request,
                          const Explanation& whole);

// The steps to a word; to all four of a UUID. Empty when no step gives it.
Explanation steps_to_word(const Explanation& words, const std::string& field);

}  // namespace tool
