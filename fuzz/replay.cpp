// Runs a target on stored inputs: every file named on the command line, and every file of every
// folder named there. Needs nothing but the target, so that any compiler builds it.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "fuzz/fuzz_target.h"

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

}  // namespace

int main(int argc, char** argv) {
  std::size_t count = 0;
  for (int i = 1; i < argc; ++i) {
    for (const Path& path : inputs_at(argv[i])) {
      run(path);
      ++count;
    }
  }
  std::printf("%zu inputs replayed\n", count);
  if (count == 0) std::fprintf(stderr, "usage: %s FILE-OR-FOLDER...\n", argv[0]);
  return count == 0 ? 1 : 0;
}
