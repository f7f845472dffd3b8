// What the built library offers, what it needs, and what it keeps.

#include <elf.h>
#include <gmock/gmock.h>

#include <algorithm>
#include <iterator>
#include <string>
#include <vector>

#include <korvel_utils.h>
#include "tests/harness/exports.h"
#include "tests/harness/library.h"
#include "tests/package/elf_file.h"

namespace package_test {
namespace {

using testing::AnyOf;
using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;
using testing::UnorderedElementsAreArray;

const ElfFile& library() {
  static const ElfFile file(harness::library_path());
  return file;
}

constexpr bool kSanitized = sizeof(KORVEL_TEST_SANITIZER) > 1;

#define SKIP_WHEN_SANITIZED()                                                              \
  if (kSanitized) {                                                                        \
    GTEST_SKIP() << "the sanitizer's runtime adds symbols, data and libraries of its own"; \
  }

// Optimised builds only: others carry what the compiler would have removed.
#define SKIP_UNLESS_RELEASE()                                        \
  if (std::string(KORVEL_TEST_CONFIGURATION) != "Release") {         \
    GTEST_SKIP() << "holds for the configuration that is delivered"; \
  }

std::vector<std::string> exported_names() {
  std::vector<std::string> names;
  for (const ElfSymbol& symbol : library().dynamic_symbols()) {
    if (symbol.defined) names.push_back(symbol.name);
  }
  return names;
}

std::vector<std::string> imported_names() {
  std::vector<std::string> names;
  for (const ElfSymbol& symbol : library().dynamic_symbols()) {
    if (!symbol.defined) names.push_back(symbol.name);
  }
  return names;
}

const std::vector<std::string>& listed_names() {
#define KORVEL_NAME(name) #name,
  static const std::vector<std::string> names = {KORVEL_EXPORTS(KORVEL_NAME)};
#undef KORVEL_NAME
  return names;
}

TEST(SharedLibrary, ExportsExactlyThe24FunctionsOfTheList) {
  EXPECT_EQ(listed_names().size(), 24U);
  EXPECT_THAT(exported_names(), UnorderedElementsAreArray(listed_names()));
}

TEST(SharedLibrary, ExportsFunctionsOnlyAndNoneOfThemWeak) {
  for (const ElfSymbol& symbol : library().dynamic_symbols()) {
    if (!symbol.defined) continue;
    EXPECT_TRUE(symbol.function) << symbol.name;
    EXPECT_FALSE(symbol.weak) << symbol.name;
  }
}

TEST(SharedLibrary, NeedsTheServicesLibrary) {
  EXPECT_THAT(library().dynamic_texts(DT_NEEDED), Contains("libhxluser.so"));
}

TEST(SharedLibrary, NeedsNothingElseButTheCLibrary) {
  SKIP_WHEN_SANITIZED();
  EXPECT_THAT(library().dynamic_texts(DT_NEEDED),
              Each(AnyOf("libhxluser.so", "libc.so.6", StartsWith("ld-linux"))));
}

// The services' operations, the C library's memory functions, and what its stack protector takes.
// DeliveredLibrary.AsksForTheServicesAndTheStackProtectorAlone has what the optimised library is left
// with.
const std::vector<std::string>& allowed_imports() {
  static const std::vector<std::string> names = {
      "hxl_library_open",
      "hxl_library_close",
      "hxl_device_open",
      "hxl_device_close",
      "hxl_device_getinfo",
      "hxl_device_getinfo_ext",
      "os_alog",
      "os_snprintf",
      "os_memset",
      "memcpy",
      "memmove",
      "memset",
      "memcmp",
      "__stack_chk_fail",
      "__stack_chk_guard",
  };
  return names;
}

TEST(SharedLibrary, ImportsOnlyTheServicesAndBasicsOfTheCLibrary) {
  SKIP_WHEN_SANITIZED();
  for (const std::string& name : imported_names()) {
    EXPECT_THAT(allowed_imports(), Contains(name));
  }
}

TEST(SharedLibrary, ImportsEveryOperationOfTheServicesThatItSpeaksOf) {
  for (const char* name :
       {"hxl_library_open", "hxl_library_close", "hxl_device_open", "hxl_device_close",
        "hxl_device_getinfo", "hxl_device_getinfo_ext", "os_alog", "os_snprintf", "os_memset"}) {
    EXPECT_THAT(imported_names(), Contains(name));
  }
}

bool belongs_to_the_cpp_runtime(const std::string& name) {
  constexpr const char* kStarts[] = {"_Z", "__cxa_", "__gxx_", "_Unwind_", "__dynamic_cast"};
  return std::any_of(std::begin(kStarts), std::end(kStarts),
                     [&name](const char* start) { return name.rfind(start, 0) == 0; });
}

TEST(SharedLibrary, RefersToNothingOfTheCppRuntime) {
  SKIP_WHEN_SANITIZED();
  for (const std::string& name : library().relocation_symbols()) {
    EXPECT_FALSE(belongs_to_the_cpp_runtime(name)) << name;
  }
  for (const std::string& name : imported_names()) {
    EXPECT_FALSE(belongs_to_the_cpp_runtime(name)) << name;
  }
}

uint64_t section_size(const std::string& name) {
  uint64_t size = 0;
  for (const ElfSection& section : library().sections()) {
    if (section.name == name) size += section.size;
  }
  return size;
}

TEST(SharedLibrary, KeepsNoWritableDataBeyondTheIdentity) {
  SKIP_WHEN_SANITIZED();
  SKIP_UNLESS_RELEASE();
  EXPECT_EQ(section_size(".data") + section_size(".bss"), 8U);
  EXPECT_EQ(section_size(".tdata") + section_size(".tbss"), 0U);
}

TEST(SharedLibrary, HasNoOtherWritableSections) {
  SKIP_WHEN_SANITIZED();
  SKIP_UNLESS_RELEASE();
  for (const ElfSection& section : library().sections()) {
    if (!section.writable) continue;
    // All but the first two are the loader's own, or become read-only once it is done.
    EXPECT_THAT(section.name, AnyOf(".data", ".bss", ".got", ".dynamic", ".data.rel.ro"));
    EXPECT_FALSE(section.holds_code) << section.name;
  }
}

TEST(SharedLibrary, RunsNothingAtLoadAndUnload) {
  SKIP_WHEN_SANITIZED();
  for (const int64_t tag : {DT_INIT, DT_FINI, DT_INIT_ARRAY, DT_FINI_ARRAY}) {
    EXPECT_FALSE(library().has_dynamic_entry(tag)) << tag;
  }
  EXPECT_EQ(section_size(".ctors") + section_size(".dtors"), 0U);
}

TEST(SharedLibrary, FindsTheServicesLibraryBesideIt) {
  EXPECT_THAT(library().dynamic_texts(DT_RUNPATH), ElementsAre("$ORIGIN"));
  EXPECT_THAT(library().dynamic_texts(DT_RPATH), IsEmpty());
}

TEST(SharedLibrary, BearsItsNameWithTheMajorVersion) {
  EXPECT_THAT(library().dynamic_texts(DT_SONAME),
              ElementsAre("libkorvel_utils.so." + std::to_string(KORVEL_UTILS_VERSION_MAJOR)));
}

TEST(SharedLibrary, IsPositionIndependentWithAStackThatRunsNoCode) {
  EXPECT_FALSE(library().has_dynamic_entry(DT_TEXTREL));
  EXPECT_EQ(library().segment_flags(PT_GNU_STACK), uint32_t{PF_R | PF_W});
}

}  // namespace
}  // namespace package_test
