// os_snprintf and os_memset.
#include <cstdarg>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>

#include "calls.h"
#include "hxl_sim.h"
#include "lock.h"
#include "misuse.h"
#include "services.h"
#include "settings.h"

namespace simulator {
namespace {

void note_null(const char* operation, const char* argument) {
  const Lock lock(state_mutex);
  note_misuse(lock, "%s: null %s", operation, argument);
}

std::int32_t failure_of_printing() {
  const Lock lock(state_mutex);
  const auto result = static_cast<std::int32_t>(settings(lock).failure_result);
  return result < 0 ? result : -1;
}

}  // namespace
}  // namespace simulator

std::int32_t os_snprintf(char* text, std::size_t text_size, const char* format, ...) noexcept {
  std::int32_t length = -1;
  if (format == nullptr) {
    simulator::note_null("os_snprintf", "format");
  } else if (text == nullptr && text_size != 0) {
    simulator::note_null("os_snprintf", "text");
  } else if (simulator::printing_is_made_to_fail()) {
    length = simulator::failure_of_printing();
  } else {
    std::va_list arguments;
    va_start(arguments, format);
    length = std::vsnprintf(text, text_size, format, arguments);
    va_end(arguments);
  }
  if (simulator::calls_are_recorded()) {
    const simulator::Lock lock(simulator::state_mutex);
    simulator::record_call(lock, HXL_SIM_SNPRINTF, {text_size}, length);
  }
  return length;
}

void* os_memset(void* destination, std::int32_t value, std::size_t size) noexcept {
  if (destination != nullptr) {
    std::memset(destination, value, size);
  } else if (size != 0) {
    simulator::note_null("os_memset", "destination");
  }
  if (simulator::calls_are_recorded()) {
    const simulator::Lock lock(simulator::state_mutex);
    simulator::record_call(lock, HXL_SIM_MEMSET, {static_cast<std::uint32_t>(value), size}, 0);
  }
  return destination;
}
