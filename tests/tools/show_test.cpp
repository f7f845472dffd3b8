// Layouts worked out by hand from the alignment rules, as the program shows them.
#include <gtest/gtest.h>

#include "tests/harness/chips.h"
#include "tests/harness/off_by.h"
#include "tests/tools/json_words.h"
#include "tests/tools/run_tool.h"

namespace tool_test {
namespace {

using nlohmann::json;

std::string show_on(uint32_t chip_id, const std::string& arguments) {
  return "show --chip " + hex(chip_id) + " " + arguments;
}

std::string show_on_family(uint32_t family_id, const std::string& arguments) {
  return show_on(harness::full_chip(family_id).chip_id, arguments);
}

// Tiles of 64 x 16 elements of 4 bytes: 30 x 68 of them, 1920 x 1088 elements. A byte of flags
// stands for 16 x 4 texels: 1920 / 16 = 120 a row, rounded to 128; 1088 / 4 = 272 rows; 272 x 128 =
// 34816 bytes, 9 pages of 4096.
TEST(Show, TiledWithFlagBuffer) {
  const json shown = json_of(show_on_family(6, "--format r8g8b8a8_unorm --size 1920x1080 --ubwc"));
  const json& layout = shown.at("layout");
  constexpr uint64_t kSlice = 9 * 4096 + 7680 * 1088;
  expect_words(layout, {{"levels", 1}, {"alignment", 4096}, {"total_size", kSlice + 5512}});
  expect_words(layout.at("level").at(0), {{"slices", 1}, {"tiled", true}, {"size", kSlice}});
  expect_words(layout.at("level").at(0).at("plane").at(0), {{"image_offset", 9 * 4096},
                                                            {"image_size", 7680 * 1088},
                                                            {"image_pitch", 1920 * 4},
                                                            {"image_slice_pitch", kSlice},
                                                            {"image_element_size", 4},
                                                            {"image_width", 1920},
                                                            {"image_height", 1088},
                                                            {"flag_valid", true},
                                                            {"flag_offset", 0},
                                                            {"flag_size", 9 * 4096},
                                                            {"flag_pitch", 128},
                                                            {"flag_slice_pitch", kSlice}});
  expect_word(shown, "gpu_buffer_size", kSlice);
}

// Family 5 steps linear widths by 64 elements: 128 x 4 bytes, just short of the padding threshold.
// 512 x 50 = 25600 bytes take 7 pages of 4096.
TEST(Show, LinearOnFamily5) {
  const json shown = json_of(show_on_family(5, "--format 28 --size 100x50x3 --linear"));
  const json& level = shown.at("layout").at("level").at(0);
  expect_words(level, {{"slices", 3}, {"tiled", false}, {"size", 3 * 7 * 4096}, {"planes", 1}});
  expect_words(level.at("plane").at(0), {{"image_offset", 0},
                                         {"image_size", 7 * 4096},
                                         {"image_pitch", 128 * 4},
                                         {"image_slice_pitch", 7 * 4096},
                                         {"image_width", 128},
                                         {"image_height", 50},
                                         {"flag_valid", false},
                                         {"flag_offset", nullptr}});
  expect_word(shown.at("layout"), "alignment", 64);
  expect_word(shown, "gpu_buffer_size", 3 * 7 * 4096);
}

// Luma in tiles of 128 x 32, chroma in tiles of 64 x 32, one byte an element: both 1280 x 736,
// which is 230 pages. Without --planes the format's own two.
TEST(Show, TwoPlanes) {
  const json shown = json_of(show_on_family(7, "--format nv12 --size 1280x720"));
  const json& planes = shown.at("layout").at("level").at(0).at("plane");
  ASSERT_EQ(planes.size(), 2U);
  constexpr uint64_t kPlane = 1280 * 736;
  expect_words(planes.at(0), {{"image_offset", 0}, {"image_size", kPlane}, {"image_pitch", 1280}});
  expect_words(planes.at(1),
               {{"image_offset", kPlane}, {"image_size", kPlane}, {"image_height", 736}});
  expect_word(shown, "gpu_buffer_size", 2 * kPlane);
}

TEST(Show, PlanesAsAsked) {
  const json one =
      json_with_warnings(show_on_family(7, "--format nv12 --size 1280x720 --planes 1"));
  EXPECT_NUMBER(one.at("layout").at("level").at(0).at("plane").size(), 1);
  const json none =
      json_with_warnings(show_on_family(7, "--format nv12 --size 1280x720 --planes 0"));
  EXPECT_NUMBER(none.at("layout").at("level").at(0).at("plane").size(), 0);
  expect_word(none, "gpu_buffer_size", 0);
}

// 25 x 25 blocks: 64 a row, 32 rows of 8-byte blocks in tiles of 32 x 16.
TEST(Show, BlockCompressed) {
  const json shown = json_of(show_on_family(6, "--format bc1_unorm --size 100x100"));
  expect_words(shown.at("layout").at("level").at(0).at("plane").at(0), {{"image_element_size", 8},
                                                                        {"image_width", 64},
                                                                        {"image_height", 32},
                                                                        {"image_pitch", 64 * 8},
                                                                        {"image_size", 512 * 32}});
}

// Elements of 4 bytes x 4 samples in tiles of 16 x 16.
TEST(Show, Multisampled) {
  const json shown = json_of(show_on_family(6, "--format 28 --size 20x20 --samples 4"));
  expect_words(shown.at("layout").at("level").at(0).at("plane").at(0),
               {{"image_element_size", 4 * 4},
                {"image_width", 32},
                {"image_height", 32},
                {"image_pitch", 32 * 16}});
}

// 256, 128 and 64 texels a side are whole tiles of 4-byte elements. The chain stands there twice.
TEST(Show, MipChain) {
  const json shown = json_of(show_on_family(6, "--format 28 --size 256x256x2 --levels 3"));
  const json& levels = shown.at("layout").at("level");
  ASSERT_EQ(levels.size(), 3U);
  constexpr uint64_t kSizes[] = {1024 * 256, 512 * 128, 256 * 64};
  constexpr uint64_t kOffsets[] = {0, 262144, 262144 + 65536};
  constexpr uint64_t kChain = 262144 + 65536 + 16384;  // 84 pages
  for (std::size_t l = 0; l < 3; ++l) {
    SCOPED_TRACE("level " + std::to_string(l));
    expect_words(
        levels.at(l).at("plane").at(0),
        {{"image_offset", kOffsets[l]}, {"image_size", kSizes[l]}, {"image_slice_pitch", kChain}});
    expect_word(levels.at(l), "size", 2 * kSizes[l]);
  }
  expect_word(shown, "gpu_buffer_size", 2 * kChain);
}

// Every level's flag buffer is 64 x 64 bytes; the three stand in front of the images, whose sizes
// are those of the chain above.
TEST(Show, MipChainWithFlagBuffers) {
  const json shown = json_of(show_on_family(6, "--format 28 --size 256x256 --levels 3 --ubwc"));
  const json& levels = shown.at("layout").at("level");
  constexpr uint64_t kFlags = 3 * 64 * 64;
  constexpr uint64_t kImages[] = {kFlags, kFlags + 262144, kFlags + 262144 + 65536};
  for (std::size_t l = 0; l < 3; ++l) {
    SCOPED_TRACE("level " + std::to_string(l));
    expect_words(levels.at(l).at("plane").at(0), {{"flag_offset", l * 64 * 64},
                                                  {"flag_size", 64 * 64},
                                                  {"flag_pitch", 64},
                                                  {"image_offset", kImages[l]}});
  }
  expect_word(shown, "gpu_buffer_size", kFlags + 262144 + 65536 + 16384);
}

TEST(Show, ChainOfOneLevelAndOfFifteen) {
  const json one = json_of(show_on_family(7, "--format 28 --size 64x64 --levels 1"));
  EXPECT_NUMBER(one.at("layout").at("level").size(), 1);
  const json all =
      json_with_warnings(show_on_family(7, "--format 28 --size 64x64 --levels 15 --linear"));
  EXPECT_NUMBER(all.at("layout").at("level").size(), 15);
}

// One tile a slice: 64 x 16 elements of 4 bytes are a page. Six of them.
TEST(Show, ExtraBuffer) {
  const json shown = json_of(show_on_family(6, "--format 28 --size 64x16x6 --extra"));
  expect_words(shown.at("layout"), {{"extra_valid", true},
                                    {"extra_offset", 6 * 4096},
                                    {"extra_size", 6 * 8224},
                                    {"extra_slice_pitch", 8224},
                                    {"extended", false}});
  // 24576 + 49344 = 73920 bytes take 19 pages.
  expect_word(shown, "gpu_buffer_size", 19 * 4096);
}

// 16 elements and 16 rows a padding unit, in front of the alignment: 80 x 32, in tiles of 64 x 16.
TEST(Show, ExtraPadding) {
  const auto& chip = harness::chip_where("of one padding unit", [](const auto& candidate) {
    return candidate.family_id == 6 && candidate.supported &&
           harness::in_every_column(candidate.columns) &&
           harness::model_of(candidate).extra_padding_factor == 1;
  });
  const json shown = json_of(show_on(chip.chip_id, "--format 28 --size 64x16 --extra --extended"));
  expect_words(shown.at("layout").at("level").at(0).at("plane").at(0),
               {{"image_width", 128}, {"image_height", 32}});
  expect_words(shown.at("layout"), {{"extended", true}});
}

TEST(Show, FormatsByNameInAnyCase) {
  for (const char* name : {"28", "0x1c", "r8g8b8a8_unorm", "R8G8B8A8_UNORM",
                           "DXGI_FORMAT_R8G8B8A8_UNORM", "dxgi_format_r8g8b8a8_unorm"}) {
    SCOPED_TRACE(name);
    const json shown = json_of("show --size 1x1 --format " + std::string(name));
    expect_word(shown.at("request"), "format", 28);
  }
  const json srgb = json_of("show --size 1x1 --format astc_12x12_unorm_srgb");
  expect_word(srgb.at("request"), "format", 187);
  EXPECT_EQ(json_of("show --size 1x1 --format 501").at("request").at("format_name"), nullptr);
}

TEST(Show, HeaderWords) {
  const json shown = json_of("show --format 28 --size 64x64");
  expect_word(shown.at("chip"), "chip_id", 0x43010000);
  expect_words(shown.at("header"), {{"magic", 0x00FACADE},
                                    {"header_version", 1},
                                    {"blob_size", 5536},
                                    {"record_kind", 3},
                                    {"record_offset", 24},
                                    {"record_size", 5512}});
  EXPECT_EQ(shown.at("header").at("magic_hex"), "0x00FACADE");
  EXPECT_NUMBER(shown.at("header").size(), 7);
  EXPECT_EQ(shown.at("layout").at("driver_uuid"), "04000000-0100-0000-0300-000000000000");
}

// The words of the first of these layouts.
TEST(Show, TextHasUnitsAndHexadecimalOffsets) {
  const Outcome run =
      run_tool(show_on_family(6, "--format r8g8b8a8_unorm --size 1920x1080 --ubwc"));
  EXPECT_EQ(run.exit_code, 0);
  EXPECT_EQ(run.err, "");
  for (const char* part : {"R8G8B8A8_UNORM (28), 1920 x 1080 texels", "bytes", "elements", "0x9000",
                           "8355840", "8392704 bytes (0x801000)", "magic 0x00FACADE"}) {
    EXPECT_NE(run.out.find(part), std::string::npos) << part << " in\n" << run.out;
  }
}

// The library goes on with defaults and says so.
TEST(Show, ChipWithoutARow) {
  const Outcome run =
      run_tool(show_on(harness::kUnknownChip, "--unknown-chip --format 28 --size 10x10"));
  EXPECT_EQ(run.exit_code, 0);
  EXPECT_NE(run.out.find("unknown"), std::string::npos);
  EXPECT_NE(run.err.find("warning: Unknown HXL chip ID 305419896\n"), std::string::npos) << run.err;
  EXPECT_NE(run.err.find("warning: Unknown Chip ID 305419896\n"), std::string::npos) << run.err;
  EXPECT_NE(run.err.find("warning: chip 0x12345678 is not known"), std::string::npos) << run.err;
  EXPECT_NE(run.err.find("validator refuses this layout: level 0: the level's size must not be 0"),
            std::string::npos)
      << run.err;
  EXPECT_EQ(count_lines(run.err), 4U) << run.err;
  EXPECT_EQ(
      run_tool("show --unknown-chip --chip 0xFFFFFFFF --format 28 --size 10x10 --ubwc").exit_code,
      0);
  EXPECT_EQ(
      run_tool("show --unknown-chip --chip 0 --format nv12 --size 10x10 --levels 4").exit_code, 0);
}

TEST(Show, LargestSizes) {
  EXPECT_EQ(run_tool("show --format 28 --size 2147483647x2147483647x2147483647").exit_code, 0);
  EXPECT_EQ(run_tool("show --format bc7_unorm --size 2147483647x2147483647 --levels 15 --linear")
                .exit_code,
            0);
  EXPECT_EQ(run_tool("show --format 28 --size 2147483647x1 --ubwc --levels 15").exit_code, 0);
}

}  // namespace
}  // namespace tool_test
