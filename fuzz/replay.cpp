// replay_TARGET [--meets CASE]... FILE-OR-FOLDER...
//
// Runs a target on stored inputs: every file named on the command line, and every file of every
// folder named there. Fails when a case that the inputs are to meet is met by none. Needs no fuzzer,
// so that any compiler builds it.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "fuzz/fuzz_target.h"
#include "fuzz/met_cases.h"

namespace {

using Path = std::filesystem::path;

std::vector<Path> inputs_at(const Path& path) {
  if (!std::filesystem::is_directory(path)) return {path};
  std::vector<Path> inputs;
  for (const auto& entry : std::filesystem::directory_iterator(path)) {
    if (entry.is_regular_file()) inputs.push_back(entry.path());
  }
  std::sort(inputs.begin(), inputs.end());
  return inputs;
}

std::string contents(const Path& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) {
    std::fprintf(stderr, "cannot read %s\n", path.c_str());
    std::exit(1);
  }
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

void run(const Path& path) {
  // A copy of its own on the heap, where a sanitizer sees every read beyond it.
  const std::string text = contents(path);
  const std::vector<uint8_t> bytes(text.begin(), text.end());
  LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
}

struct Arguments {
  std::vector<Path> paths;
  std::vector<fuzz::Case> meets;
};

[[noreturn]] void end_with_usage(const char* program) {
  std::fprintf(stderr, "usage: %s [--meets CASE]... FILE-OR-FOLDER...\n", program);
  std::exit(1);
}

fuzz::Case case_or_end(const char* name) {
  const std::optional<fuzz::Case> found = fuzz::case_named(name);
  if (found) return *found;
  std::fprintf(stderr, "no property tells a case %s apart\n", name);
  std::exit(1);
}

Arguments arguments_of(int argc, char** argv) {
  Arguments arguments;
  for (int i = 1; i < argc; ++i) {
    if (std::string_view(argv[i]) != "--meets") {
      arguments.paths.emplace_back(argv[i]);
      continue;
    }
    if (++i == argc) end_with_usage(argv[0]);
    arguments.meets.push_back(case_or_end(argv[i]));
  }
  return arguments;
}

bool all_are_met(const std::vector<fuzz::Case>& cases) {
  bool all = true;
  for (const fuzz::Case asked : cases) {
    const uint64_t times = fuzz::times_met(asked);
    std::printf("%s: met %llu times\n", fuzz::name_of(asked).data(),
                static_cast<unsigned long long>(times));
    if (times != 0) continue;
    std::fprintf(stderr, "no input meets the case %s\n", fuzz::name_of(asked).data());
    all = false;
  }
  return all;
}

}  // namespace

int main(int argc, char** argv) {
  const Arguments arguments = arguments_of(argc, argv);
  std::size_t count = 0;
  for (const Path& argument : arguments.paths) {
    for (const Path& path : inputs_at(argument)) {
      run(path);
      ++count;
    }
  }
  std::printf("%zu inputs replayed\n", count);
  if (count == 0) end_with_usage(argv[0]);
  return all_are_met(arguments.meets) ? 0 : 1;
}
