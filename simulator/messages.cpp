#include "messages.h"

#include <array>
#include <cstdarg>
#include <cstddef>
#include <cstdint>
#include <string>

#include "calls.h"
#include "hxl_sim.h"
#include "misuse.h"
#include "services.h"
#include "settings.h"
#include "standard_error.h"
#include "text.h"

namespace simulator {
namespace {

constinit std::array<hxl_sim_message_record, HXL_SIM_MAX_MESSAGES> messages{};
constinit std::size_t message_count = 0;
constinit std::size_t dropped_count = 0;

struct Message {
  std::uint32_t level;
  const char* tag;
  std::uint32_t zero;
  std::uint32_t line;
  const char* function;
  const char* format;
  std::string text;
};

void check_message(const Lock& lock, const Message& message) {
  if (message.zero != 0) {
    note_misuse(lock, "os_alog: third argument is %u, must be 0", message.zero);
  }
  if (message.tag == nullptr) {
    note_misuse(lock, "os_alog: null tag");
  }
  if (message.function == nullptr) {
    note_misuse(lock, "os_alog: null function");
  }
  if (message.format == nullptr) {
    note_misuse(lock, "os_alog: null format");
  }
}

void keep_message(const Lock& /*lock*/, const Message& message) {
  if (message_count == messages.size()) {
    ++dropped_count;
    return;
  }
  hxl_sim_message_record& record = messages[message_count++];
  record.level = message.level;
  record.zero = message.zero;
  record.line = message.line;
  record.reserved = 0;
  record.text_length = message.text.size();
  copy_text(record.tag, sizeof record.tag, text_or_null(message.tag));
  copy_text(record.function, sizeof record.function, text_or_null(message.function));
  copy_text(record.format, sizeof record.format, text_or_null(message.format));
  copy_text(record.text, sizeof record.text, message.text);
}

// The lock keeps lines apart that are too long for the system to write at once.
void print_message(const Lock& /*lock*/, const Message& message) {
  std::string line(text_or_null(message.tag));
  line.append(": ").append(text_or_null(message.function));
  line.append(":").append(std::to_string(message.line)).append(": ").append(message.text);
  if (!line.ends_with('\n')) {
    line.push_back('\n');
  }
  write_to_standard_error(line);
}

}  // namespace

void clear_messages(const Lock& /*lock*/) {
  message_count = 0;
  dropped_count = 0;
}

}  // namespace simulator

void os_alog(std::uint32_t level, const char* tag, std::uint32_t zero, std::uint32_t line,
             const char* function, const char* format, ...) noexcept {
  simulator::Message message{level, tag, zero, line, function, format, "(null)"};
  if (format != nullptr) {
    std::va_list arguments;
    va_start(arguments, format);
    message.text = simulator::format_text(format, arguments);
    va_end(arguments);
  }

  const simulator::Lock lock(simulator::state_mutex);
  simulator::record_call(lock, HXL_SIM_ALOG, {level, line}, 0);
  simulator::check_message(lock, message);
  const simulator::Settings& settings = simulator::settings(lock);
  if (settings.capture_messages) {
    simulator::keep_message(lock, message);
  } else if (settings.print_messages) {
    simulator::print_message(lock, message);
  }
}

std::size_t hxl_sim_message_count() {
  const simulator::Lock lock(simulator::state_mutex);
  return simulator::message_count;
}

std::size_t hxl_sim_messages_dropped() {
  const simulator::Lock lock(simulator::state_mutex);
  return simulator::dropped_count;
}

int hxl_sim_message(std::size_t index, hxl_sim_message_record* message) {
  const simulator::Lock lock(simulator::state_mutex);
  if (index >= simulator::message_count) {
    return 0;
  }
  *message = simulator::messages[index];
  return 1;
}

void hxl_sim_clear_messages() {
  const simulator::Lock lock(simulator::state_mutex);
  simulator::clear_messages(lock);
}
