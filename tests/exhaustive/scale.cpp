#include "tests/exhaustive/scale.h"

#include <cstdlib>
#include <cstring>

namespace exhaustive {

bool is_full() {
  const char* text = std::getenv("KORVEL_EXHAUSTIVE");
  return text != nullptr && std::strcmp(text, "full") == 0;
}

uint32_t format_stride() {
  return is_full() ? 1 : KORVEL_EXHAUSTIVE_STRIDE;
}

}  // namespace exhaustive
