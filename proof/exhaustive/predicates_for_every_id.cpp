// Calls the three predicates of the built library and compares the answers with those of the rules.
// What is shown, and what is not, stands at the top of predicates_for_every_id.py, which writes the
// file of expected answers.

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <set>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "proof/exhaustive/argument_values.h"
#include "proof/exhaustive/expected_answers.h"
#include "simulator/hxl_sim.h"
#include "tests/harness/library.h"

namespace proof {

namespace {

constexpr uint64_t kAllValues = uint64_t{1} << 32;
constexpr std::size_t kDisagreementsPrinted = 10;

uint64_t calls_made = 0;
std::atomic<uint64_t> disagreements{0};
unsigned jobs = 1;

template <Kind kKind>
uint32_t call(const harness::Library& library, uint32_t format, Arguments arguments) {
  if constexpr (kKind == kUbwc) {
    return library.isUBWCSupportedByGpu(format);
  } else if constexpr (has_samples(kKind)) {
    return library.isFormatSampleableByGpu(static_cast<int32_t>(format), arguments.samples,
                                           static_cast<int32_t>(arguments.use));
  } else {
    return library.isFormatRenderableByGpu(static_cast<int32_t>(format),
                                           static_cast<int32_t>(arguments.use));
  }
}

template <Kind kKind>
[[gnu::cold, gnu::noinline]] void disagree(const Machine& machine, uint32_t format,
                                           Arguments arguments, uint32_t answer,
                                           uint32_t expected) {
  if (disagreements++ >= kDisagreementsPrinted) return;
  std::string text;
  const auto format_as_signed = std::to_string(static_cast<int32_t>(format));
  const auto use = std::to_string(static_cast<int32_t>(arguments.use));
  if constexpr (kKind == kUbwc) {
    text = "isUBWCSupportedByGpu(" + std::to_string(format) + ")";
  } else if constexpr (has_samples(kKind)) {
    text = "isFormatSampleableByGpu(" + format_as_signed + ", " +
           std::to_string(arguments.samples) + ", " + use + ")";
  } else {
    text = "isFormatRenderableByGpu(" + format_as_signed + ", " + use + ")";
  }
  std::fprintf(stderr, "HXL_SIM_CHIP=0x%08x (failures 0x%x): %s is %u, by the rules %u\n",
               machine.reported_chip_id, machine.failure, text.c_str(), answer, expected);
}

template <Kind kKind>
void check(const harness::Library& library, const Machine& machine, uint32_t format,
           Arguments arguments, uint32_t expected) {
  const uint32_t answer = call<kKind>(library, format, arguments);
  if (answer != expected) [[unlikely]] {
    disagree<kKind>(machine, format, arguments, answer, expected);
  }
}

// Runs part(first, last) for parts of [first, last) on all threads.
template <typename Part>
void in_parts(uint64_t first, uint64_t last, Part part) {
  std::vector<std::thread> threads;
  const uint64_t length = (last - first + jobs - 1) / jobs;
  for (uint64_t begin = first; begin < last; begin += length) {
    threads.emplace_back(part, begin, std::min(begin + length, last));
  }
  for (std::thread& thread : threads) thread.join();
  calls_made += last - first;
}

// Calls body(kind constant) for every kind.
template <typename Body, std::size_t... kKinds>
void for_kinds(Body body, std::index_sequence<kKinds...>) {
  (body(std::integral_constant<Kind, Kind{kKinds}>{}), ...);
}

template <typename Body>
void for_every_kind(Body body) {
  for_kinds(body, std::make_index_sequence<kKindCount>());
}

// The messages since the last call of this function.
std::vector<Message> take_messages() {
  std::vector<Message> messages;
  hxl_sim_message_record record;
  for (std::size_t i = 0; hxl_sim_message(i, &record) != 0; ++i) {
    messages.push_back({record.function, record.text});
  }
  hxl_sim_clear_messages();
  return messages;
}

void expect_messages(const Machine& machine, const std::vector<Message>& expected) {
  const std::vector<Message> messages = take_messages();
  if (messages == expected) return;
  if (disagreements++ >= kDisagreementsPrinted) return;
  std::fprintf(stderr, "HXL_SIM_CHIP=0x%08x (failures 0x%x): %zu messages, by the rules %zu:\n",
               machine.reported_chip_id, machine.failure, messages.size(), expected.size());
  for (const Message& message : messages) {
    std::fprintf(stderr, "  sent     %s: %s\n", message.function.c_str(), message.text.c_str());
  }
  for (const Message& message : expected) {
    std::fprintf(stderr, "  expected %s: %s\n", message.function.c_str(), message.text.c_str());
  }
}

// One call with the messages that belong to it.
template <Kind kKind>
void check_with_messages(const harness::Library& library, const Machine& machine, uint32_t format,
                         bool is_first) {
  check<kKind>(library, machine, format, arguments_of(kKind, format), machine[kKind][format]);
  ++calls_made;
  std::vector<Message> expected;
  if (is_first || machine.asks_again) expected = machine.identification;
  if (machine[kKind].message) expected.push_back(*machine[kKind].message);
  expect_messages(machine, expected);
}

// The machine, and the library as loaded by a new process.
harness::Library load_on(const Machine& machine) {
  hxl_sim_reset();
  hxl_sim_set_chip(machine.reported_chip_id);
  hxl_sim_set_failures(machine.failure);
  hxl_sim_set_capture(1);
  hxl_sim_clear_calls();
  return harness::load_library();
}

// Every predicate as the first one that is called, then every id below kFirstUnnamedId and those
// around every power of two, message by message.
void check_messages(const Machine& machine, const std::vector<uint32_t>& values) {
  for_every_kind([&](auto kind) {
    harness::Library library = load_on(machine);
    check_with_messages<kind>(library, machine, 28, true);
    for (uint32_t format = 0; format < kFirstUnnamedId; ++format) {
      check_with_messages<kind>(library, machine, format, false);
    }
    for (const uint32_t format : values) {
      if (format < kFirstUnnamedId) continue;
      check_with_messages<kind>(library, machine, format, false);
    }
    harness::unload_library(library);
  });
}

// Ids from kFirstUnnamedId on at which a bit changes: `count` on both sides of every power of two
// and of every multiple of 2^24.
std::vector<uint32_t> unnamed_ids_at_every_bit(uint32_t count) {
  std::set<uint64_t> centres;
  for (uint64_t centre = 0; centre <= kAllValues; centre += uint64_t{1} << 24) {
    centres.insert(centre);
  }
  for (uint64_t bit = 1; bit < kAllValues; bit *= 2) centres.insert(bit);
  std::set<uint32_t> ids = {0x37425857};
  for (const uint64_t centre : centres) {
    for (uint64_t id = centre < count ? 0 : centre - count; id < centre + count; ++id) {
      if (id >= kFirstUnnamedId && id < kAllValues) ids.insert(static_cast<uint32_t>(id));
    }
  }
  return {ids.begin(), ids.end()};
}

// Every id below kFirstUnnamedId with every pair of arguments, then the unnamed ids.
void check_values(const harness::Library& library, const Machine& machine,
                  const std::array<std::vector<Arguments>, kKindCount>& pairs,
                  const std::vector<uint32_t>& unnamed_ids) {
  for_every_kind([&](auto kind) {
    const KindAnswers& expected = machine[kind];
    for (uint32_t format = 0; format < kFirstUnnamedId; ++format) {
      for (const Arguments arguments : pairs[kind]) {
        check<kind>(library, machine, format, arguments, expected[format]);
      }
    }
    calls_made += kFirstUnnamedId * pairs[kind].size();
    for (const uint32_t format : unnamed_ids) {
      check<kind>(library, machine, format, arguments_of(kind, format), expected.behind);
    }
    calls_made += unnamed_ids.size();
  });
}

// Every id from kFirstUnnamedId on, for every kind of arguments.
void check_all_ids(const harness::Library& library, const Machine& machine) {
  for_every_kind([&](auto kind) {
    in_parts(kFirstUnnamedId, kAllValues, [&](uint64_t first, uint64_t last) {
      const uint32_t expected = machine[kind].behind;
      for (uint64_t id = first; id < last; ++id) {
        const auto format = static_cast<uint32_t>(id);
        check<kind>(library, machine, format, arguments_of(kind, format), expected);
      }
    });
  });
}

// Calls with one format, in which the arguments take all values: arguments(n) for every n.
template <Kind kZero, Kind kNonzero, typename ArgumentsOf>
void check_all_uses(const harness::Library& library, const Machine& machine, uint32_t format,
                    ArgumentsOf arguments) {
  in_parts(0, kAllValues, [&](uint64_t first, uint64_t last) {
    const uint32_t expected[] = {machine[kZero][format], machine[kNonzero][format]};
    for (uint64_t n = first; n < last; ++n) {
      const Arguments values = arguments(static_cast<uint32_t>(n));
      check<kNonzero>(library, machine, format, values, expected[values.use != 0]);
    }
  });
}

void check_all_sample_counts(const harness::Library& library, const Machine& machine,
                             uint32_t format) {
  in_parts(0, kAllValues, [&](uint64_t first, uint64_t last) {
    const uint32_t expected[] = {machine[kSampleableSingleZero][format],
                                 machine[kSampleableMultiZero][format]};
    for (uint64_t n = first; n < last; ++n) {
      const auto samples = static_cast<uint32_t>(n);
      check<kSampleableMultiZero>(library, machine, format, {samples, 0}, expected[samples >= 2]);
    }
  });
}

// The first named id of each combination of answers to the kinds from `first` to `last`.
std::vector<uint32_t> id_of_each_combination(const Machine& machine, Kind first, Kind last) {
  std::set<std::vector<uint32_t>> seen;
  std::vector<uint32_t> ids;
  for (uint32_t format = 0; format < kFirstUnnamedId; ++format) {
    std::vector<uint32_t> combination;
    for (std::size_t kind = first; kind <= last; ++kind) {
      combination.push_back(machine.answers[kind][format]);
    }
    if (seen.insert(combination).second) ids.push_back(format);
  }
  return ids;
}

// All values of each argument, for an id of each combination of answers.
void check_all_arguments(const harness::Library& library, const Machine& machine) {
  const auto use_alone = [](uint32_t n) { return Arguments{0, n}; };
  const auto single_sample = [](uint32_t n) { return Arguments{n >> 31, n}; };
  const auto many_samples = [](uint32_t n) {
    return Arguments{arguments_of(kSampleableMultiNonzero, n).samples, n};
  };
  for (const uint32_t format :
       id_of_each_combination(machine, kRenderableZero, kRenderableNonzero)) {
    check_all_uses<kRenderableZero, kRenderableNonzero>(library, machine, format, use_alone);
  }
  for (const uint32_t format :
       id_of_each_combination(machine, kSampleableSingleZero, kSampleableMultiNonzero)) {
    check_all_sample_counts(library, machine, format);
    check_all_uses<kSampleableSingleZero, kSampleableSingleNonzero>(library, machine, format,
                                                                    single_sample);
    check_all_uses<kSampleableMultiZero, kSampleableMultiNonzero>(library, machine, format,
                                                                  many_samples);
  }
}

class Clock {
 public:
  // Prints what was done since the last call.
  void report(const std::string& what) {
    const auto now = std::chrono::steady_clock::now();
    const double seconds = std::chrono::duration<double>(now - begin_).count();
    std::printf("%-58s %16llu calls %8.1f s\n", what.c_str(),
                static_cast<unsigned long long>(calls_made - calls_), seconds);
    std::fflush(stdout);
    begin_ = now;
    calls_ = calls_made;
  }

 private:
  std::chrono::steady_clock::time_point begin_ = std::chrono::steady_clock::now();
  uint64_t calls_ = 0;
};

// Expects one identification and no message since load_on(). By their numbers: texts are kept of
// the first few alone.
void expect_silence(const Machine& machine) {
  const uint64_t identifications = hxl_sim_call_count(HXL_SIM_DEVICE_GETINFO);
  const uint64_t messages = hxl_sim_call_count(HXL_SIM_ALOG);
  if (identifications == 1 && messages == 0) return;
  ++disagreements;
  std::fprintf(stderr, "HXL_SIM_CHIP=0x%08x: %llu identifications and %llu messages, not 1 and 0\n",
               machine.reported_chip_id, static_cast<unsigned long long>(identifications),
               static_cast<unsigned long long>(messages));
}

void check_machines(const std::vector<Machine>& machines, bool quick) {
  Clock clock;
  const std::vector<uint32_t> values = values_at_every_bit();
  for (const Machine& machine : machines) check_messages(machine, values);
  clock.report("messages, " + std::to_string(machines.size()) + " machines");

  std::array<std::vector<Arguments>, kKindCount> pairs;
  for (std::size_t kind = 0; kind < kKindCount; ++kind) {
    pairs[kind] = pairs_of(Kind{kind}, quick ? values_of_one_bit() : values);
  }
  const std::vector<uint32_t> unnamed_ids = unnamed_ids_at_every_bit(quick ? 64 : 1024);

  std::size_t chips = 0;
  for (const Machine& machine : machines) {
    if (machine.family_id == 0) continue;
    ++chips;
    harness::Library library = load_on(machine);
    check_values(library, machine, pairs, unnamed_ids);
    expect_silence(machine);
    harness::unload_library(library);
  }
  clock.report("ids and arguments at every bit, " + std::to_string(chips) + " chips");
  if (quick) return;

  std::set<uint32_t> families;
  for (const Machine& machine : machines) {
    if (machine.family_id == 0 || !families.insert(machine.family_id).second) continue;
    harness::Library library = load_on(machine);
    // Identified by one thread: what follows reads the identity alone.
    library.isUBWCSupportedByGpu(0);
    const std::string family = "family " + std::to_string(machine.family_id);
    check_all_ids(library, machine);
    clock.report("all ids from 722 on, a chip of " + family);
    if (families.size() == 1) {
      check_all_arguments(library, machine);
      clock.report("all values of each argument, a chip of " + family);
    }
    expect_silence(machine);
    harness::unload_library(library);
  }
  if (families.size() != 3) {
    std::fprintf(stderr, "there are chips of %zu families, not of 3\n", families.size());
    std::exit(2);
  }
}

}  // namespace

}  // namespace proof

int main(int argc, char** argv) {
  const char* path = nullptr;
  bool quick = false;
  proof::jobs = std::max(1U, std::thread::hardware_concurrency());
  for (int i = 1; i < argc; ++i) {
    if (std::strcmp(argv[i], "--quick") == 0) {
      quick = true;
    } else if (std::strcmp(argv[i], "--jobs") == 0 && i + 1 < argc && std::atoi(argv[i + 1]) > 0) {
      proof::jobs = static_cast<unsigned>(std::atoi(argv[++i]));
    } else if (argv[i][0] != '-' && path == nullptr) {
      path = argv[i];
    } else {
      path = nullptr;
      break;
    }
  }
  if (path == nullptr) {
    std::fprintf(stderr, "usage: %s EXPECTED_ANSWERS [--quick] [--jobs N]\n", argv[0]);
    return 2;
  }
  const auto begin = std::chrono::steady_clock::now();
  proof::check_machines(proof::read_expected_answers(path), quick);
  const double seconds =
      std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
  std::printf("%s: %llu calls, %llu disagreements, %.1f s\n", harness::library_path(),
              static_cast<unsigned long long>(proof::calls_made),
              static_cast<unsigned long long>(proof::disagreements), seconds);
  return proof::disagreements == 0 ? 0 : 1;
}
