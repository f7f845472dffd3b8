// The time of each case, by Google Benchmark.

#include <benchmark/benchmark.h>

#include "bench/cases.h"

int main(int argc, char** argv) {
  constexpr std::size_t kMixedFormats = 1'000'000;  // too many for a branch predictor to learn
  bench::prepare(kMixedFormats);
  for (const bench::Case& c : bench::cases()) {
    benchmark::RegisterBenchmark(c.name, [run = c.run](benchmark::State& state) {
      for (auto _ : state) run();
    });
  }
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}
