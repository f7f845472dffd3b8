// Calls every case a few times, for a tool that counts from outside which instructions are executed.
//
// The tool sees where one case ends and the next begins by begin_count(): it is called before the
// calls of each case, in the order of the list, and once after the last. What happens only once, as
// the identification of the GPU, is done before.
//
// The library is the build's own or the file that KORVEL_UTILS_LIBRARY names (tests/harness).
//
// instruction_counts list   lists the cases, one a line: name, calls, floor, between tabs
// instruction_counts where  prints where the code lies: "library", "floors" and "begin_count" with
//                           the first address and the one behind the last, and the library's file
// instruction_counts        the calls; prints as `where` does

#include <dlfcn.h>

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <span>

#include "bench/cases.h"
#include "bench/floors.h"
#include "bench/loaded_code.h"
#include "tests/harness/image.h"

// A C name, so that a tool finds it; the empty statement keeps the calls.
extern "C" {
void begin_count();
[[gnu::noinline]] void begin_count() {
  asm volatile("");
}
}

namespace {

// A case of random formats is called for as many formats as are mixed, so that its count is the mean
// of all of them; every call of another case takes the same instructions.
constexpr std::size_t kMixedFormats = 2000;
constexpr std::size_t kCalls = 10;

std::size_t calls_of(const bench::Case& c) {
  return std::strstr(c.name, "random") != nullptr ? kMixedFormats : kCalls;
}

// The first case calls nothing.
std::span<const bench::Case> counted_cases() {
  return bench::cases().subspan(1);
}

bool every_export_has_a_case() {
  bool complete = true;
  const auto expect_case = [&](const char* name) {
    for (const bench::Case& c : counted_cases()) {
      if (std::strcmp(c.function, name) == 0) return;
    }
    std::fprintf(stderr, "no case calls %s\n", name);
    complete = false;
  };
#define X(name) expect_case(#name);
  KORVEL_EXPORTS(X)
#undef X
  return complete;
}

bench::AddressRange library_image(const harness::Library& library) {
  if (library.image != nullptr) {
    const auto bytes = library.image->bytes();
    const auto begin = reinterpret_cast<uintptr_t>(bytes.data());
    return {begin, begin + bytes.size()};
  }
  return bench::elf_image_of(reinterpret_cast<const void*>(library.korvel_init_memory_layout));
}

void print_range(const char* name, bench::AddressRange range) {
  std::printf("%s\t0x%jx\t0x%jx\n", name, static_cast<uintmax_t>(range.begin),
              static_cast<uintmax_t>(range.end));
}

void print_where(const harness::Library& library) {
  print_range("library", library_image(library));
  print_range("floors", bench::elf_image_of(reinterpret_cast<const void*>(&floor_read)));
  const auto begin = reinterpret_cast<uintptr_t>(&begin_count);
  print_range("begin_count", {begin, begin + 1});
  std::printf("file\t%s\n", harness::library_path());
}

void call_all() {
  for (const bench::Case& c : counted_cases()) c.run();
  for (const bench::Case& c : counted_cases()) {
    begin_count();
    for (std::size_t calls = calls_of(c); calls > 0; --calls) c.run();
  }
  begin_count();
}

void list() {
  for (const bench::Case& c : counted_cases()) {
    std::printf("%s\t%zu\t%s\n", c.name, calls_of(c), c.floor != nullptr ? c.floor : "-");
  }
}

}  // namespace

int main(int argc, char** argv) {
  const char* task = argc == 2 ? argv[1] : "";
  if (argc > 1 && std::strcmp(task, "list") != 0 && std::strcmp(task, "where") != 0) {
    std::fprintf(stderr, "usage: %s [list | where]\n", argv[0]);
    return 2;
  }
  if (!every_export_has_a_case()) return 1;
  if (std::strcmp(task, "list") == 0) {
    list();
    return 0;
  }
  print_where(bench::prepare(kMixedFormats));
  if (std::strcmp(task, "where") != 0) call_all();
  return 0;
}
