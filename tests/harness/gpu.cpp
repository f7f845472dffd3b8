#include "tests/harness/gpu.h"

#include <gtest/gtest.h>

#include <ostream>

#include "tests/harness/log_statements.h"

namespace harness {

void PrintTo(const Message& message, std::ostream* out) {
  *out << message.function << ": " << message.text;
}

Gpu::Gpu(uint32_t chip_id, uint32_t failures) {
  hxl_sim_reset();
  hxl_sim_set_chip(chip_id);
  hxl_sim_set_failures(failures);
  hxl_sim_set_capture(1);
  library_ = load_library();
}

Gpu::~Gpu() {
  unload_library(library_);
  EXPECT_EQ(hxl_sim_open_libraries(), 0U);
  EXPECT_EQ(hxl_sim_open_devices(), 0U);
  EXPECT_EQ(hxl_sim_misuse_count(), 0U);
}

std::vector<Message> Gpu::take_messages() {
  std::vector<Message> messages;
  hxl_sim_message_record record;
  for (std::size_t i = 0; hxl_sim_message(i, &record) != 0; ++i) {
    messages.push_back({record.function, record.text, record.format, record.tag, record.level,
                        record.zero, record.line});
    EXPECT_EQ(record.level, 1U);
    EXPECT_STREQ(record.tag, "Korvel-UNKNOWN");
    EXPECT_EQ(record.zero, 0U);
    EXPECT_TRUE(is_sent_from(record.line, record.format));
  }
  hxl_sim_clear_messages();
  return messages;
}

std::vector<std::string> Gpu::take_calls() {
  std::vector<std::string> calls;
  hxl_sim_call_record record;
  for (std::size_t i = 0; hxl_sim_call(i, &record) != 0; ++i) {
    if (record.operation > HXL_SIM_DEVICE_GETINFO_EXT) continue;
    const bool takes_handle = record.operation >= HXL_SIM_DEVICE_CLOSE;
    std::string arguments;
    for (uint32_t a = 0; a < record.argument_count; ++a) {
      if (a > 0) arguments += ", ";
      arguments += takes_handle && a == 0 ? "device" : std::to_string(record.arguments[a]);
    }
    calls.push_back(std::string(hxl_sim_operation_name(record.operation)) + "(" + arguments + ")");
  }
  hxl_sim_clear_calls();
  return calls;
}

std::vector<Message> unknown_chip_messages(uint32_t chip_id) {
  const std::string text = "Unknown HXL chip ID " + std::to_string(chip_id);
  return {message("korvel_get_family_id", text), message("korvel_get_chip_id", text),
          message("korvel_get_rev_id", text)};
}

}  // namespace harness
