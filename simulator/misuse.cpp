#include "misuse.h"

#include <array>
#include <cstdarg>
#include <cstddef>
#include <cstdio>

#include "hxl_sim.h"
#include "text.h"

namespace simulator {
namespace {

using Text = std::array<char, 256>;

constinit std::array<Text, HXL_SIM_MAX_MISUSE> texts{};
constinit std::size_t misuse_count = 0;

}  // namespace

void note_misuse(const Lock& /*lock*/, const char* format, ...) {
  if (misuse_count < texts.size()) {
    Text& text = texts[misuse_count];
    std::va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(text.data(), text.size(), format, arguments);
    va_end(arguments);
  }
  ++misuse_count;
}

void clear_misuse(const Lock& /*lock*/) {
  misuse_count = 0;
}

}  // namespace simulator

std::size_t hxl_sim_misuse_count() {
  const simulator::Lock lock(simulator::state_mutex);
  return simulator::misuse_count;
}

int hxl_sim_misuse(std::size_t index, char* text, std::size_t size) {
  const simulator::Lock lock(simulator::state_mutex);
  if (index >= simulator::misuse_count || index >= simulator::texts.size()) {
    simulator::copy_text(text, size, "");
    return 0;
  }
  simulator::copy_text(text, size, simulator::texts[index].data());
  return 1;
}
