// What the program says about a layout that is not what its user may think.
#include <gtest/gtest.h>

#include <algorithm>

#include "tests/harness/chips.h"
#include "tests/tools/run_tool.h"

namespace tool_test {
namespace {

std::string on_family(uint32_t family_id, const std::string& arguments) {
  return " --chip " + hex(harness::full_chip(family_id).chip_id) + " " + arguments;
}

// Expects that a run of either command warns of it, on standard error and in the JSON, and that
// --strict makes the exit code 1 with the same data.
void expect_warning(const std::string& arguments, const std::string& warning) {
  for (const std::string command : {"show", "explain"}) {
    SCOPED_TRACE(command + arguments);
    const nlohmann::json warnings = json_with_warnings(command + arguments).at("warnings");
    EXPECT_EQ(std::count(warnings.begin(), warnings.end(), nlohmann::json(warning)), 1) << warnings;
    const Outcome lenient = run_tool(command + arguments);
    const Outcome strict = run_tool(command + arguments + " --strict");
    EXPECT_EQ(lenient.exit_code, 0);
    EXPECT_EQ(strict.exit_code, 1);
    EXPECT_EQ(strict.out, lenient.out);
    EXPECT_EQ(strict.err, lenient.err);
  }
}

TEST(Warnings, NoneOnLayoutsThatAreAsTheyShouldBe) {
  for (const uint32_t family_id : {5U, 6U, 7U}) {
    for (const char* arguments :
         {"--format 28 --size 1920x1080", "--format 28 --size 1918x1080 --linear",
          "--format 28 --size 1920x1080 --ubwc", "--format nv12 --size 1920x1080",
          "--format bc1_unorm --size 2048x2048 --levels 12",
          "--format 28 --size 2048x2048 --levels 12 --ubwc --extra",
          "--format d32_float --size 1000x1000x6 --samples 4", "--format 28 --size 16384x16384",
          "--format 28 --size 16384x16 --linear"}) {
      for (const std::string command : {"show", "explain"}) {
        const Outcome run = run_tool(command + on_family(family_id, arguments) + " --strict");
        EXPECT_EQ(run.exit_code, 0) << arguments << ": " << run.err;
        EXPECT_EQ(run.err, "") << arguments;
        const nlohmann::json json = json_of(command + on_family(family_id, arguments));
        EXPECT_EQ(json.at("warnings"), nlohmann::json::array()) << arguments;
      }
    }
  }
}

// 4 bytes x 4 samples x 16384 = 262144 bytes a row; x 16384 rows = 2^32.
TEST(Warnings, ProductsThatWrap) {
  const std::string arguments = on_family(6, "--format 28 --size 16384x16384 --samples 4");
  expect_warning(arguments,
                 "level 0, plane 0, image size: 16384 rows with 262144 bytes a row are 4294967296 "
                 "bytes, which do not fit 32 bits: the library goes on with 0 bytes");
  expect_warning(arguments,
                 "the library's own validator refuses this layout: level 0: the level's size must "
                 "not be 0 bytes [Metadata level size is invalid value {level 0, size 0, surface "
                 "size 5512}]");
  const Outcome run = run_tool("explain" + arguments);
  EXPECT_NE(run.out.find("WRAPPED: 4294967296 bytes do not fit 32 bits\n"), std::string::npos);
  // One row less wraps no more: 16383 rows take 1024 tiles of 16 rows, as 16384 do; 16368 take 1023.
  EXPECT_EQ(run_tool("show" + on_family(6, "--format 28 --size 16384x16368 --samples 4")).err, "");
}

// 20000 elements in steps of 64: 20032. Families 5 and 6 end at 16384.
TEST(Warnings, RowsThatAreCut) {
  expect_warning(on_family(6, "--format 28 --size 20000x10 --linear"),
                 "level 0, plane 0, width: rows of 20032 elements end at 16384 elements (family "
                 "6): what lies beyond has no place");
}

TEST(Warnings, LevelsThatTheSizeLacks) {
  expect_warning(on_family(7, "--format 28 --size 64x32 --levels 8"),
                 "64 x 32 texels have 7 levels, but 8 are laid out: the last ones hold nothing "
                 "more");
  EXPECT_EQ(run_tool("show" + on_family(7, "--format 28 --size 64x32 --levels 7")).err, "");
}

TEST(Warnings, PlanesThatTheFormatDoesNotHave) {
  expect_warning(on_family(7, "--format nv12 --size 64x64 --planes 1"),
                 "NV12 (103) has 2 planes, but 1 is laid out");
  expect_warning(on_family(7, "--format 28 --size 64x64 --planes 2"),
                 "R8G8B8A8_UNORM (28) has 1 plane, but 2 are laid out");
}

TEST(Warnings, ChipsThatAreNotKnown) {
  expect_warning(" --chip 0x12345678 --unknown-chip --format 28 --size 64x64",
                 "chip 0x12345678 is not known: sizes are not aligned, and alignments that every "
                 "known chip has count as 0 or 1 byte");
  const harness::ChipData& unsupported =
      harness::chip_where("not supported", [](const auto& chip) { return !chip.supported; });
  const Outcome run = run_tool("show --format 28 --size 64x64 --chip " + hex(unsupported.chip_id));
  EXPECT_NE(run.err.find("is not one whose surfaces the alignment rules know"), std::string::npos)
      << run.err;
}

// A record holds at most 2048 slices that a validator accepts.
TEST(Warnings, LayoutsThatTheValidatorRefuses) {
  expect_warning(on_family(6, "--format 28 --size 64x64x2049"),
                 "the library's own validator refuses this layout: level 0: slices is 2049: 1 to "
                 "2048 is allowed [Metadata level slices is invalid value {level 0, slices 2049}]");
  EXPECT_EQ(run_tool("show" + on_family(6, "--format 28 --size 64x64x2048")).err, "");
  expect_warning(
      on_family(6, "--format 28 --size 64x64 --linear --levels 2 --ubwc"),
      "the library's own validator refuses this layout: level 0, plane 0: a linear level "
      "has a flag buffer, which only tiled ones may have [Metadata level flagbuffer "
      "enabled but tiling is disabled {level 0, plane 0}]");
}

}  // namespace
}  // namespace tool_test
