// A machine with one GPU, and a fresh load of the library that is about to meet it.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "simulator/hxl_sim.h"
#include "tests/harness/library.h"

namespace harness {

// A diagnostic as the services library received it.
struct Message {
  std::string function;
  std::string text;
  std::string format;
  std::string tag;
  uint32_t level;
  uint32_t zero;
  uint32_t line;

  // Function and text, which is what tests expect of a message.
  friend bool operator==(const Message& a, const Message& b) {
    return a.function == b.function && a.text == b.text;
  }
};

void PrintTo(const Message& message, std::ostream* out);

// Only one Gpu may exist at a time: the simulator and the library are the process's own.
class Gpu {
 public:
  // `failures`: HXL_SIM_FAIL_... bits.
  explicit Gpu(uint32_t chip_id, uint32_t failures = 0);
  ~Gpu();  // also expects that the library opened nothing that it did not close, and misused
           // nothing
  Gpu(const Gpu&) = delete;
  Gpu& operator=(const Gpu&) = delete;

  const Library* operator->() const { return &library_; }
  const Library& library() const { return library_; }

  // What happened since the last call of this function. Expects of each message what all have in
  // common: level, tag, and the source line of the statement that sends it.
  std::vector<Message> take_messages();

  // Calls of hxl_ operations since the last call of this function, as "hxl_device_open(1, 0)";
  // handles are written as "device". Messages, text and memory operations are left out.
  std::vector<std::string> take_calls();

 private:
  Library library_;
};

// The expected messages of a first call on an unknown chip, in order.
std::vector<Message> unknown_chip_messages(uint32_t chip_id);

inline Message message(std::string function, std::string text) {
  return {std::move(function), std::move(text), {}, {}, 0, 0, 0};
}

}  // namespace harness
