// Runs one case a number of times, for a tool that counts instructions from outside.
//
// instruction_counts            lists the cases, one a line: name, function, floor, between tabs
// instruction_counts CASE RUNS  calls the case RUNS times

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "bench/cases.h"

int main(int argc, char** argv) {
  if (argc == 1) {
    for (const bench::Case& c : bench::cases()) {
      if (c.function == nullptr) continue;
      std::printf("%s\t%s\t%s\n", c.name, c.function, c.floor != nullptr ? c.floor : "-");
    }
    return 0;
  }
  if (argc != 3) {
    std::fprintf(stderr, "usage: %s [CASE RUNS]\n", argv[0]);
    return 2;
  }
  bench::prepare();
  for (const bench::Case& c : bench::cases()) {
    if (std::strcmp(c.name, argv[1]) != 0) continue;
    for (long runs = std::atol(argv[2]); runs > 0; --runs) c.run();
    return 0;
  }
  std::fprintf(stderr, "no case is called '%s'\n", argv[1]);
  return 2;
}
