#include "proof/exhaustive/expected_answers.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <sstream>

#include "identify/hardware_data.h"
#include "simulator/hxl_sim.h"

namespace proof {

namespace {

constexpr const char* kKindNames[kKindCount] = {
    "renderable zero",
    "renderable nonzero",
    "sampleable single zero",
    "sampleable single nonzero",
    "sampleable multi zero",
    "sampleable multi nonzero",
    "ubwc",
};

class Reader {
 public:
  explicit Reader(const char* path) : path_(path), file_(path) {
    if (!file_) give_up("it cannot be opened");
  }

  std::vector<Machine> machines() {
    next_line();
    expect("ids");
    if (number() != kFirstUnnamedId) give_up("its ids are not the program's");
    expect("machines");
    std::vector<Machine> machines(number());
    for (Machine& machine : machines) read(machine);
    next_line();
    expect("end");
    return machines;
  }

  [[noreturn]] void give_up(const std::string& why) const {
    std::fprintf(stderr, "%s:%d: %s\n", path_, line_number_, why.c_str());
    std::exit(2);
  }

 private:
  void read(Machine& machine) {
    next_line();
    expect("machine");
    machine.reported_chip_id = number();
    machine.failure = failure();
    expect("family");
    machine.family_id = number();
    const std::string asks = word();
    if (asks != "asks_again" && asks != "asks_once") give_up("'" + asks + "' is unknown");
    machine.asks_again = asks == "asks_again";
    next_line();
    expect("identification");
    machine.identification.resize(number());
    for (Message& message : machine.identification) {
      next_line();
      message = rest_as_message();
    }
    for (std::size_t kind = 0; kind < kKindCount; ++kind) {
      read(machine.answers[kind], kKindNames[kind]);
    }
  }

  void read(KindAnswers& answers, const char* name) {
    next_line();
    std::istringstream words(name);
    for (std::string part; words >> part;) expect(part);
    expect("behind");
    answers.behind = static_cast<uint8_t>(number());
    if (answers.behind > 1) give_up("an answer is neither 0 nor 1");
    expect("ids");
    set_ids(answers, word());
    next_line();
    const std::string says = word();
    if (says == "says") {
      answers.message = rest_as_message();
    } else if (says != "silent") {
      give_up("'" + says + "' is neither 'says' nor 'silent'");
    }
  }

  // "2-4,10": the ids that are answered with 1.
  void set_ids(KindAnswers& answers, const std::string& list) {
    if (list == "none") return;
    std::istringstream ranges(list);
    for (std::string range; std::getline(ranges, range, ',');) {
      const std::size_t hyphen = range.find('-');
      const uint32_t first = number_of(range.substr(0, hyphen));
      const uint32_t last =
          hyphen == std::string::npos ? first : number_of(range.substr(hyphen + 1));
      if (first > last || last >= kFirstUnnamedId) give_up("'" + range + "' is no range of ids");
      std::fill(answers.of_id.begin() + first, answers.of_id.begin() + last + 1, uint8_t{1});
    }
  }

  uint32_t failure() {
    const std::string name = word();
    if (name == "none") return 0;
    if (name == "library_open") return HXL_SIM_FAIL_LIBRARY_OPEN;
    if (name == "device_open") return HXL_SIM_FAIL_DEVICE_OPEN;
    if (name == "getinfo") return HXL_SIM_FAIL_GETINFO;
    give_up("'" + name + "' is no operation that fails");
  }

  void next_line() {
    std::string line;
    ++line_number_;
    if (!std::getline(file_, line)) give_up("the file ends too early");
    line_ = std::istringstream(line);
  }

  std::string word() {
    std::string word;
    if (!(line_ >> word)) give_up("the line ends too early");
    return word;
  }

  void expect(const std::string& expected) {
    const std::string found = word();
    if (found != expected) give_up("'" + found + "' stands where '" + expected + "' belongs");
  }

  uint32_t number() { return number_of(word()); }

  uint32_t number_of(const std::string& text) const {
    char* end = nullptr;
    const unsigned long long value = std::strtoull(text.c_str(), &end, 0);
    if (text.empty() || *end != '\0' || text[0] == '-' || value > UINT32_MAX) {
      give_up("'" + text + "' is no 32-bit number");
    }
    return static_cast<uint32_t>(value);
  }

  Message rest_as_message() {
    Message message;
    message.function = word();
    line_ >> std::ws;
    std::getline(line_, message.text);
    if (message.text.empty()) give_up("a message without text");
    return message;
  }

  const char* path_;
  std::ifstream file_;
  std::istringstream line_;
  int line_number_ = 0;
};

}  // namespace

std::vector<Machine> read_expected_answers(const char* path) {
  Reader reader(path);
  std::vector<Machine> machines = reader.machines();
  const auto expect_one = [&](const char* what, auto test) {
    if (!std::any_of(machines.begin(), machines.end(), test)) {
      reader.give_up(std::string("no machine is ") + what);
    }
  };
  for (const korvel::ChipData& chip : korvel::kChipData) {
    char what[64];
    std::snprintf(what, sizeof what, "chip 0x%08x of the hardware data", chip.chip_id);
    expect_one(what, [&](const Machine& machine) {
      return machine.reported_chip_id == chip.chip_id && machine.failure == 0 &&
             machine.family_id == chip.family_id;
    });
  }
  expect_one("an unknown chip", [](const Machine& machine) {
    return machine.failure == 0 && machine.family_id == 0 && !machine.asks_again;
  });
  for (const uint32_t failure :
       {HXL_SIM_FAIL_LIBRARY_OPEN, HXL_SIM_FAIL_DEVICE_OPEN, HXL_SIM_FAIL_GETINFO}) {
    expect_one("one on which an operation fails",
               [&](const Machine& machine) { return machine.failure == failure; });
  }
  return machines;
}

}  // namespace proof
