// How numbers come about, as the program explains them. Numbers are worked out by hand.
#include <gtest/gtest.h>

#include "tests/harness/chips.h"
#include "tests/harness/off_by.h"
#include "tests/tools/json_words.h"
#include "tests/tools/run_tool.h"

namespace tool_test {
namespace {

using nlohmann::json;

std::string explain_on_family(uint32_t family_id, const std::string& arguments) {
  return "explain --chip " + hex(harness::full_chip(family_id).chip_id) + " " + arguments;
}

// The numbers before and after each step of a subject, such as {2000, 2000, 2048, 2304}.
std::vector<uint64_t> numbers_of(const json& explained, const std::string& subject) {
  std::vector<uint64_t> numbers;
  for (const json& step : explained.at("steps")) {
    if (step.at("subject") != subject) continue;
    if (numbers.empty()) numbers.push_back(step.at("before").at("value"));
    numbers.push_back(step.at("after").at("value"));
  }
  return numbers;
}

using Numbers = std::vector<uint64_t>;

// 2000 texels are as many elements; steps of 64: 2048; rows of 2048 x 4 = 8192 bytes are 4 channel
// spans of 2048 and get 1024 bytes, 256 elements, more: 2304, which are 9216 bytes. x 1080 rows =
// 9953280, whole 4096 bytes already.
TEST(Explain, LinearWithPadding) {
  const json explained =
      json_of(explain_on_family(6, "--format r8g8b8a8_unorm --size 2000x1080 --linear"));
  EXPECT_EQ(numbers_of(explained, "width"), (Numbers{2000, 2000, 2048, 2304}));
  EXPECT_EQ(numbers_of(explained, "height"), (Numbers{1080, 1080, 1080}));
  EXPECT_EQ(numbers_of(explained, "pitch"), (Numbers{2304, 9216}));
  EXPECT_EQ(numbers_of(explained, "image size"), (Numbers{1080, 9953280, 9953280, 9953280}));
  expect_word(explained, "gpu_buffer_size", 9953280);
}

// A row of 1920 x 4 = 7680 bytes is above 512, but no whole 2048.
TEST(Explain, LinearWithoutPadding) {
  const json explained = json_of(explain_on_family(6,
                                                   "--format 28 --size 1918x1080 --linear --field "
                                                   "level[0].plane[0].image_width"));
  EXPECT_EQ(numbers_of(explained, "width"), (Numbers{1918, 1918, 1920, 1920}));
  const json& last = explained.at("steps").back();
  EXPECT_EQ(last.at("field"), "level[0].plane[0].image_width");
  EXPECT_EQ(last.at("fact"),
            "7680 bytes a row are above the chip's threshold of 512 (aux_alignment) and no whole "
            "channel spans of 2048 bytes");
  EXPECT_EQ(last.at("rule"), "the row is not padded");
}

// 1088 rows in tiles of 16. A byte of flags stands for 16 x 4: 120 and 272, in rows of 128 bytes:
// 34816, in whole 4096: 36864.
TEST(Explain, FlagBuffer) {
  const json explained = json_of(explain_on_family(6, "--format 28 --size 1920x1080 --ubwc"));
  EXPECT_EQ(numbers_of(explained, "height"), (Numbers{1080, 1080, 1088}));
  EXPECT_EQ(numbers_of(explained, "flag width"), (Numbers{1920, 120}));
  EXPECT_EQ(numbers_of(explained, "flag height"), (Numbers{1088, 272}));
  EXPECT_EQ(numbers_of(explained, "flag pitch"), (Numbers{120, 128}));
  EXPECT_EQ(numbers_of(explained, "flag size"), (Numbers{272, 34816, 36864}));
  EXPECT_EQ(numbers_of(explained, "image offset"), (Numbers{0, 36864}));
}

// 25 x 25 blocks of 4 x 4 texels; whole 64 a row; tiles of 32 x 16 blocks of 8 bytes.
TEST(Explain, Blocks) {
  const json explained = json_of(explain_on_family(6, "--format bc1_unorm --size 100x100"));
  EXPECT_EQ(numbers_of(explained, "width"), (Numbers{100, 25, 64, 64}));
  EXPECT_EQ(numbers_of(explained, "height"), (Numbers{100, 25, 32}));
}

// Units, numbered steps, and the library's numbers behind them.
TEST(Explain, Text) {
  const Outcome run =
      run_tool(explain_on_family(6, "--format r8g8b8a8_unorm --size 2000x1080 --linear"));
  EXPECT_EQ(run.exit_code, 0);
  EXPECT_EQ(run.err, "");
  std::size_t at = 0;
  for (const char* part :
       {"R8G8B8A8_UNORM (28), 2000 x 1080 texels", "Level 0, plane 0\n",
        "   1  width             2000 texels -> 2000 elements\n", "one texel is one element\n",
        "   2  width             2000 -> 2048 elements\n",
        "linear, 4 bytes an element, so 16 elements fill whole units of 64 bytes:",
        "   3  width             2048 -> 2304 elements         = image_width\n",
        "256 elements (1024 bytes) more keep rows\n",
        "1080 rows                     = image_height\n",
        "2304 elements -> 9216 bytes   = image_pitch\n", "the pitch is width x element size\n",
        "1080 rows -> 9953280 bytes\n", "9953280 -> 9958792 bytes      = total_size\n",
        "The library's answer, the same in all 12 fields\n", "Images\n",
        "9953280 bytes (0x97E000)"}) {
    const std::size_t found = run.out.find(part, at);
    EXPECT_NE(found, std::string::npos) << part << " in\n" << run.out;
    if (found != std::string::npos) at = found;
  }
}

TEST(Explain, OneField) {
  const std::string chain = explain_on_family(7, "--format 28 --size 256x256 --levels 3 ");
  // 64 texels at level 2: 64 elements of 4 bytes.
  const Outcome run = run_tool(chain + "--field level[2].plane[0].image_pitch");
  EXPECT_EQ(run.exit_code, 0) << run.err;
  EXPECT_TRUE(run.out.ends_with(
      "\nThe library's answer is the same: level[2].plane[0].image_pitch = 256\n"))
      << run.out;
  EXPECT_EQ(run.out.find("height"), std::string::npos) << run.out;
  for (const char* field : {"alignment", "total_size", "gpu_buffer_size", "level[1].size"}) {
    EXPECT_EQ(run_tool(chain + "--field " + field).exit_code, 0) << field;
  }
}

TEST(Explain, FieldsThatTheLayoutLacks) {
  const std::string chain = explain_on_family(7, "--format 28 --size 256x256 --levels 3 --field ");
  const auto reason = [&chain](const std::string& field) {
    return reason_of_refusal(run_tool(chain + field));
  };
  EXPECT_NE(
      reason("level[3].plane[0].image_pitch").find("but it has level[0].plane[0].image_pitch"),
      std::string::npos);
  EXPECT_NE(reason("pitch").find("there are size, image_offset"), std::string::npos);
  EXPECT_NE(reason("tiled").find("no \"tiled\", but it has level[0].tiled"), std::string::npos);
}

struct ShownField {
  std::string name;
  json value;
};

// The fields of an object under the names that --field takes; ids stand there in hex, too.
void add_fields(const json& shown, const std::string& prefix, std::vector<ShownField>& fields) {
  for (const auto& [name, value] : shown.items()) {
    if (value.is_array()) {
      for (std::size_t i = 0; i < value.size(); ++i) {
        add_fields(value.at(i), prefix + name + "[" + std::to_string(i) + "].", fields);
      }
    } else if (!name.ends_with("_hex")) {
      fields.push_back({prefix + name, value});
    }
  }
}

std::vector<ShownField> shown_fields(const json& shown) {
  std::vector<ShownField> fields = {{"gpu_buffer_size", shown.at("gpu_buffer_size")}};
  add_fields(shown.at("header"), "header.", fields);
  add_fields(shown.at("layout"), "", fields);
  return fields;
}

// What the answer says of a field. A word of a buffer that is not there is not shown, and is 0.
std::string answer_of(const json& value) {
  if (value.is_null()) return "0";
  if (value.is_boolean()) return value.get<bool>() ? "1" : "0";
  return value.is_string() ? value.get<std::string>() : value.dump();
}

void expect_explained(const std::string& request, const ShownField& field) {
  const Outcome run = run_tool("explain " + request + " --field " + field.name);
  EXPECT_EQ(run.exit_code, 0) << request << ", " << field.name << ": " << run.err;
  EXPECT_NE(run.out.find("\n   1  "), std::string::npos) << request << ", " << field.name;
  EXPECT_TRUE(run.out.ends_with("\nThe library's answer is the same: " + field.name + " = " +
                                answer_of(field.value) + "\n"))
      << request << ", " << field.name << ":\n"
      << run.out;
}

// Every field that show prints has an explanation: of a surface, of linear and compressed ones, of
// planes, of array layers, of a chain, of one that a density map is for, and of no planes at all.
TEST(Explain, EveryFieldThatShowPrints) {
  std::size_t explained = 0;
  for (const char* request :
       {"--format 28 --size 100x60", "--format 28 --size 100x60 --linear",
        "--format 28 --size 100x60x3 --ubwc", "--format nv12 --size 128x64 --ubwc",
        "--format nv12 --size 128x64x2 --levels 3 --ubwc --linear",
        "--format 71 --size 64x64 --levels 2 --ubwc --extra",
        "--format 28 --size 100x60 --extra --extended", "--format 28 --size 8x8 --planes 0",
        "--format 28 --size 8x8 --planes 0 --levels 1"}) {
    const Outcome shown = run_tool("show --json " + std::string(request));
    ASSERT_EQ(shown.exit_code, 0) << request;
    for (const ShownField& field : shown_fields(json::parse(shown.out))) {
      expect_explained(request, field);
      ++explained;
    }
  }
  // 1 of all, 6 of the header, 15 of the record and 6 of a level; a plane has 12. Levels and planes
  // as above: 1, 1, 1, 1, 3, 2, 1, 1 and 1 levels; 1, 1, 1, 2, 3 x 2, 2, 1, 0 and 0 planes.
  EXPECT_NUMBER(explained, 9 * (1 + 6 + 15) + 12 * 6 + 14 * 12);
}

// Words that are asked for, those that are the same everywhere, and those that are not written.
TEST(Explain, WordsThatNothingLeadsTo) {
  const auto step = [](const std::string& field) {
    const json explained =
        json_of(explain_on_family(6, "--format 28 --size 100x60x3 --linear --field " + field));
    EXPECT_EQ(explained.at("steps").size(), 1U) << field;
    return explained.at("steps").at(0);
  };
  const json slices = step("level[0].slices");
  EXPECT_EQ(slices.at("after"), json({{"value", 3}, {"unit", "slices"}}));
  EXPECT_EQ(slices.at("rule"), "as asked for");
  EXPECT_EQ(slices.at("level"), 0);
  EXPECT_EQ(step("level[0].tiled").at("after"), json({{"value", false}, {"unit", "yes or no"}}));
  EXPECT_EQ(step("level[0].plane[0].flag_pitch").at("rule"), "not written");
  EXPECT_EQ(step("extra_offset").at("fact"), "extra_valid is no");
  EXPECT_EQ(step("signature").at("after"), json({{"value", 0xDA7ACA5E}, {"unit", "number"}}));
  // Not shown, as there is no such buffer, and explained all the same.
  EXPECT_EQ(step("level[0].lrz_pitch").at("fact"), "lrz_valid is no");
  EXPECT_EQ(step("device_uuid[1]").at("fact"), "family 6");
}

// What show refuses, explain refuses with the same words.
TEST(Explain, RefusesWhatShowRefuses) {
  for (const char* arguments :
       {"--format 28 --size 0x10", "--format 28 --size 1x1 --samples 3",
        "--format d32_float --size 1x1 --linear", "--format 28 --size 1x1 --extended",
        "--format 28 --size 1x1 --planes 4", "--format nv13 --size 1x1"}) {
    const Outcome shown = run_tool("show " + std::string(arguments));
    const Outcome explained = run_tool("explain " + std::string(arguments));
    EXPECT_EQ(explained.exit_code, 2) << arguments;
    EXPECT_EQ(explained.err, shown.err);
    EXPECT_EQ(explained.out, "");
  }
}

}  // namespace
}  // namespace tool_test
