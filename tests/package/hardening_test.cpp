// What the delivered library has against errors of memory. docs/security.md says what each is for.
//
// The file that is read is the built one, which is delivered byte for byte (tests/package/shipped_files).

#include <elf.h>
#include <gmock/gmock.h>
#include <sys/auxv.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "tests/harness/library.h"
#include "tests/package/elf_file.h"

namespace package_test {
namespace {

using testing::AnyOf;
using testing::Contains;
using testing::Ge;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;
using testing::UnorderedElementsAreArray;

const ElfFile& library() {
  static const ElfFile file(harness::library_path());
  return file;
}

class DeliveredLibrary : public testing::Test {
 protected:
  void SetUp() override {
    if (std::string(KORVEL_TEST_CONFIGURATION) != "Release") {
      GTEST_SKIP() << "holds for the configuration that is delivered";
    }
  }
};

uint32_t word_of(const std::string& bytes, std::size_t offset) {
  uint32_t word = 0;
  EXPECT_LE(offset + sizeof word, bytes.size());
  std::memcpy(&word, bytes.data() + offset, sizeof word);
  return word;
}

std::vector<ElfSegment> segments_of_type(uint32_t type) {
  std::vector<ElfSegment> found;
  for (const ElfSegment& segment : library().segments()) {
    if (segment.type == type) found.push_back(segment);
  }
  return found;
}

bool lies_in(const ElfSegment& segment, uint64_t address, uint64_t size) {
  return address >= segment.address && address + size <= segment.address + segment.size;
}

std::vector<ElfSymbol> exported_functions() {
  std::vector<ElfSymbol> functions;
  for (const ElfSymbol& symbol : library().dynamic_symbols()) {
    if (symbol.defined) functions.push_back(symbol);
  }
  return functions;
}

const ElfSymbol& exported_function(const std::string& name) {
  static const std::vector<ElfSymbol> functions = exported_functions();
  const auto found = std::find_if(functions.begin(), functions.end(),
                                  [&name](const ElfSymbol& symbol) { return symbol.name == name; });
  if (found == functions.end()) {
    ADD_FAILURE() << "no export " << name;
    return functions.at(0);
  }
  return *found;
}

TEST_F(DeliveredLibrary, BindsEverythingWhenItIsLoaded) {
  EXPECT_NE(library().dynamic_number(DT_FLAGS) & DF_BIND_NOW, 0U);
  EXPECT_NE(library().dynamic_number(DT_FLAGS_1) & DF_1_NOW, 0U);
  EXPECT_FALSE(library().has_dynamic_entry(DT_JMPREL)) << "something is bound when it is called";
}

// All that the loader fills in, and all that it reads itself.
TEST_F(DeliveredLibrary, LetsNobodyWriteWhatTheLoaderHasFilledIn) {
  const std::vector<ElfSegment> relro = segments_of_type(PT_GNU_RELRO);
  ASSERT_THAT(relro, SizeIs(1));
  const std::vector<ElfRelocation> relocations = library().relocations();
  EXPECT_THAT(relocations, SizeIs(Ge(9U))) << "the services have nine operations";
  for (const ElfRelocation& relocation : relocations) {
    EXPECT_TRUE(lies_in(relro[0], relocation.address, sizeof(uint64_t)))
        << std::hex << relocation.address << ' ' << relocation.symbol;
  }
  // Whole pages become read-only: what is behind the last one has to be data, and is.
#if defined(__aarch64__)
  constexpr uint64_t kLargestPage_bytes = 65536;
#else
  constexpr uint64_t kLargestPage_bytes = 4096;
#endif
  EXPECT_EQ((relro[0].address + relro[0].size) % kLargestPage_bytes, 0U);
  for (const ElfSection& section : library().sections()) {
    if (!section.writable || section.name == ".data" || section.name == ".bss") continue;
    EXPECT_TRUE(lies_in(relro[0], section.address, section.size)) << section.name;
  }
}

TEST_F(DeliveredLibrary, RunsNoDataAndNoStack) {
  const std::vector<ElfSegment> stack = segments_of_type(PT_GNU_STACK);
  ASSERT_THAT(stack, SizeIs(1));
  EXPECT_EQ(stack[0].flags, uint32_t{PF_R | PF_W});

  std::size_t with_code = 0;
  for (const ElfSegment& segment : segments_of_type(PT_LOAD)) {
    if ((segment.flags & PF_X) == 0) continue;
    ++with_code;
    EXPECT_EQ(segment.flags, uint32_t{PF_R | PF_X});
    for (const ElfSection& section : library().sections()) {
      if (!section.loaded || section.size == 0) continue;
      const bool inside = lies_in(segment, section.address, section.size);
      EXPECT_EQ(inside, section.holds_code) << section.name;
    }
  }
  EXPECT_EQ(with_code, 1U);
}

// The C library's part is the stack protector's; its own start-up objects are not linked.
TEST_F(DeliveredLibrary, AsksForTheServicesAndTheStackProtectorAlone) {
  std::vector<std::string> expected = {
      "hxl_library_open",   "hxl_library_close",      "hxl_device_open", "hxl_device_close",
      "hxl_device_getinfo", "hxl_device_getinfo_ext", "os_alog",         "os_snprintf",
      "os_memset",          "__stack_chk_fail"};
#if defined(__aarch64__)
  expected.emplace_back("__stack_chk_guard");  // x86-64 has the guard in the thread's own block
#endif
  std::vector<std::string> imported;
  for (const ElfSymbol& symbol : library().dynamic_symbols()) {
    if (!symbol.defined) imported.push_back(symbol.name);
  }
  // A memory or text function of the C library would be a call that fortification checks, by another
  // name (__memcpy_chk), or one that it cannot check. There is none of either kind.
  EXPECT_THAT(imported, UnorderedElementsAreArray(expected));
}

// The word of a property in the notes that the loader looks at; 0 when there is none.
uint32_t property(uint32_t type) {
  const std::vector<ElfSegment> notes = segments_of_type(PT_GNU_PROPERTY);
  if (notes.size() != 1) return 0;
  const std::string bytes = library().bytes_at(notes[0].address, notes[0].size);
  constexpr std::size_t kHeader = 16;  // sizes of name and description, kind, "GNU\0"
  if (bytes.size() < kHeader || word_of(bytes, 8) != NT_GNU_PROPERTY_TYPE_0) return 0;
  for (std::size_t at = kHeader; at + 8 <= bytes.size();) {
    const uint32_t size = word_of(bytes, at + 4);
    if (word_of(bytes, at) == type && size == sizeof(uint32_t)) return word_of(bytes, at + 8);
    at += 8 + (size + 7) / 8 * 8;
  }
  return 0;
}

#if defined(__x86_64__)

TEST_F(DeliveredLibrary, TellsThatItsBranchesAndReturnsMayBeChecked) {
  constexpr uint32_t kFeatures = 0xC0000002;
  constexpr uint32_t kIndirectBranchTracking = 1;
  constexpr uint32_t kShadowStack = 2;
  EXPECT_EQ(property(kFeatures), kIndirectBranchTracking | kShadowStack);
}

TEST_F(DeliveredLibrary, HasALandingPadWhereItIsCalled) {
  const std::string landing_pad = "\xF3\x0F\x1E\xFA";  // endbr64
  const std::vector<ElfSymbol> functions = exported_functions();
  EXPECT_THAT(functions, SizeIs(24));
  for (const ElfSymbol& function : functions) {
    EXPECT_EQ(library().bytes_at(function.address, landing_pad.size()), landing_pad)
        << function.name;
  }
}

bool reads_stack_guard(const ElfSymbol& function) {
  // A load, subtraction or comparison of %fs:0x28: the prefix, 64 bits, one of these operations into
  // any register, an absolute 32-bit address.
  const std::string code = library().bytes_at(function.address, function.size);
  const std::string address("\x28\x00\x00\x00", 4);
  for (std::size_t at = 0; at + 9 <= code.size(); ++at) {
    if (code[at] != '\x64' || (code[at + 1] & '\xFB') != '\x48') continue;
    if ((code[at + 3] & '\xC7') != '\x04' || code[at + 4] != '\x25') continue;
    if (code.compare(at + 5, 4, address) == 0) return true;
  }
  return false;
}

#elif defined(__aarch64__)

constexpr uint32_t kSignReturnAddress = 0xD503233F;   // paciasp, a landing pad too
constexpr uint32_t kCheckReturnAddress = 0xD50323BF;  // autiasp
constexpr uint32_t kLandingPad = 0xD503245F;          // bti c

TEST_F(DeliveredLibrary, TellsThatItsBranchesMayBeCheckedAndItsReturnsAreSigned) {
  constexpr uint32_t kFeatures = 0xC0000000;
  constexpr uint32_t kBranchTargets = 1;
  constexpr uint32_t kSignedReturns = 2;
  EXPECT_EQ(property(kFeatures), kBranchTargets | kSignedReturns);
}

TEST_F(DeliveredLibrary, HasALandingPadWhereItIsCalled) {
  const std::vector<ElfSymbol> functions = exported_functions();
  EXPECT_THAT(functions, SizeIs(24));
  for (const ElfSymbol& function : functions) {
    const uint32_t first = word_of(library().bytes_at(function.address, sizeof(uint32_t)), 0);
    EXPECT_THAT(first, AnyOf(kLandingPad, kSignReturnAddress)) << function.name;
  }
}

// The loader has asked for it because of the note, and the processor, or its emulator, does it.
TEST_F(DeliveredLibrary, IsLeftByASignalWhenABranchArrivesBehindALandingPad) {
  if ((getauxval(AT_HWCAP2) & HWCAP2_BTI) == 0) GTEST_SKIP() << "not with this processor";
  harness::Library library = harness::load_library();
  const auto size = library.korvel_get_metadata_blob_size;
  EXPECT_EQ(size(), sizeof(LayoutMetadata));
  const uintptr_t behind = reinterpret_cast<uintptr_t>(size) + sizeof(uint32_t);
  const auto size_from_behind =
      reinterpret_cast<decltype(library.korvel_get_metadata_blob_size)>(behind);
  EXPECT_EXIT(size_from_behind(), testing::KilledBySignal(SIGILL), "");
  harness::unload_library(library);
}

std::vector<uint32_t> instructions(const std::string& code) {
  std::vector<uint32_t> words;
  for (std::size_t at = 0; at + sizeof(uint32_t) <= code.size(); at += sizeof(uint32_t)) {
    words.push_back(word_of(code, at));
  }
  return words;
}

// stp x29, x30, [sp, #-n]!
bool stores_return_address(uint32_t instruction) {
  return (instruction & 0xFFC07FFF) == 0xA9807BFD;
}

// ldp x29, x30, [sp], #n
bool loads_return_address(uint32_t instruction) {
  return (instruction & 0xFFC07FFF) == 0xA8C07BFD;
}

// Branches, calls and returns, and the instructions for the system.
bool leaves_the_straight_line(uint32_t instruction) {
  return (instruction & 0x1C000000) == 0x14000000;
}

bool may_write_link_register(uint32_t instruction) {
  const bool is_pair = (instruction & 0x3A000000) == 0x28000000;
  const uint32_t first = instruction & 0x1F;
  const uint32_t second = instruction >> 10 & 0x1F;
  return first == 30 || (is_pair && second == 30);
}

// The compiler may put an instruction of the function's own between the two, never one that
// jumps or that writes the return address.
bool is_signed_before(const std::vector<uint32_t>& code, std::size_t store) {
  for (std::size_t i = store; i-- > 0;) {
    if (code[i] == kSignReturnAddress) return true;
    if (leaves_the_straight_line(code[i]) || may_write_link_register(code[i])) return false;
  }
  return false;
}

bool is_checked_behind(const std::vector<uint32_t>& code, std::size_t load) {
  for (std::size_t i = load + 1; i < code.size(); ++i) {
    if (code[i] == kCheckReturnAddress) return true;
    if (leaves_the_straight_line(code[i]) || may_write_link_register(code[i])) return false;
  }
  return false;
}

TEST_F(DeliveredLibrary, SignsReturnAddressesThatItStores) {
  const std::vector<uint32_t> code = instructions(library().section_bytes(".text"));
  std::size_t stores = 0;
  for (std::size_t i = 0; i < code.size(); ++i) {
    if (stores_return_address(code[i])) {
      ++stores;
      EXPECT_TRUE(is_signed_before(code, i)) << "instruction " << i;
    }
    if (loads_return_address(code[i])) {
      EXPECT_TRUE(is_checked_behind(code, i)) << "instruction " << i;
    }
  }
  EXPECT_GE(stores, 10U) << "functions that call";
}

// The page of an instruction "adrp Xd, page" at an address.
uint64_t page_of(uint32_t instruction, uint64_t address) {
  const auto high = static_cast<int64_t>(static_cast<int32_t>(instruction << 8) >> 13);
  const uint64_t pages = static_cast<uint64_t>(high) << 2 | (instruction >> 29 & 3U);
  return (address & ~uint64_t{0xFFF}) + (pages << 12);
}

// Loads the guard's address from the word that the loader has put it into.
bool reads_stack_guard(const ElfSymbol& function) {
  uint64_t slot = 0;
  for (const ElfRelocation& relocation : library().relocations()) {
    if (relocation.symbol == "__stack_chk_guard") slot = relocation.address;
  }
  if (slot == 0) return false;
  const std::vector<uint32_t> code =
      instructions(library().bytes_at(function.address, function.size));
  std::array<uint64_t, 32> page{};
  for (std::size_t i = 0; i < code.size(); ++i) {
    if ((code[i] & 0x9F000000) == 0x90000000) {
      page.at(code[i] & 31U) = page_of(code[i], function.address + i * sizeof(uint32_t));
    } else if ((code[i] & 0xFFC00000) == 0xF9400000) {  // ldr Xt, [Xn, #8 * n]
      if (page.at(code[i] >> 5 & 31U) + (code[i] >> 10 & 0xFFFU) * 8 == slot) return true;
    }
  }
  return false;
}

#endif

// Two that have an array of their own for certain: 280 bytes that the services fill, and the sizes of
// 45 levels. A function without any shows that not everything passes for a read.
TEST_F(DeliveredLibrary, GuardsTheStackOfFunctionsWithAnArray) {
  EXPECT_TRUE(reads_stack_guard(exported_function("isSecureContextSupportedByGpu")));
  EXPECT_TRUE(reads_stack_guard(exported_function("korvel_init_multi_level_surface")));
  EXPECT_FALSE(reads_stack_guard(exported_function("korvel_get_metadata_blob_size")));
}

TEST_F(DeliveredLibrary, HasNoSymbolsButTheDynamicOnes) {
  for (const ElfSection& section : library().sections()) {
    EXPECT_THAT(section.name, Not(AnyOf(".symtab", ".strtab")));
    EXPECT_NE(section.name.rfind(".debug", 0), 0U) << section.name;
  }
}

// The checksum by which debuggers know a file of symbols: the CRC-32 of all its bytes.
uint32_t checksum(const std::string& bytes) {
  uint32_t crc = 0xFFFFFFFF;
  for (const char c : bytes) {
    crc ^= static_cast<unsigned char>(c);
    for (int bit = 0; bit < 8; ++bit) crc = (crc >> 1) ^ ((crc & 1U) != 0 ? 0xEDB88320U : 0);
  }
  return ~crc;
}

TEST_F(DeliveredLibrary, HasItsSymbolsInAFileBesideIt) {
  // A name that ends in 0, bytes up to a multiple of 4, the checksum.
  const std::string link = library().section_bytes(".gnu_debuglink");
  ASSERT_THAT(link, SizeIs(Ge(8U)));
  const std::string name = link.c_str();
  EXPECT_EQ(name, std::filesystem::path(harness::library_path()).filename().string() + ".debug");

  const ElfFile symbols(harness::library_path() + std::string(".debug"));
  EXPECT_EQ(word_of(link, link.size() - sizeof(uint32_t)), checksum(symbols.bytes()));
  EXPECT_THAT(library().section_bytes(".note.gnu.build-id"), Not(IsEmpty()));
  EXPECT_EQ(symbols.section_bytes(".note.gnu.build-id"),
            library().section_bytes(".note.gnu.build-id"));
  std::vector<std::string> sections;
  for (const ElfSection& section : symbols.sections()) sections.push_back(section.name);
  EXPECT_THAT(sections, Contains(".symtab"));
  EXPECT_THAT(sections, Contains(".debug_line"));
}

}  // namespace
}  // namespace package_test
