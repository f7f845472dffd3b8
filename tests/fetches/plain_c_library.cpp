// The C library's string functions without the vector instructions that libcapstone does not know.
// It chooses them when a program starts, so that this one starts once more.

#include <unistd.h>

#include <cstdlib>

namespace {

constexpr const char* kVariable = "GLIBC_TUNABLES";
constexpr const char* kWithoutAvx512 = "glibc.cpu.hwcaps=-AVX512F,-AVX512VL,-AVX512BW";

// Runs before main(), with what main() gets.
[[gnu::constructor]] void start_again(int, char** arguments, char**) {
  if (std::getenv(kVariable) != nullptr) return;
  setenv(kVariable, kWithoutAvx512, 1);
  execv("/proc/self/exe", arguments);
  // Not started again: an instruction that is not known fails the test that meets it.
}

}  // namespace
