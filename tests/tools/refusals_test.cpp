// Refused records, in words with the record's own numbers.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <regex>
#include <set>

#include "tests/harness/off_by.h"
#include "tests/tools/stored_records.h"

namespace tool_test {
namespace {

// 256 x 256 elements of 4 bytes, tiled: 262144 bytes. A byte of flags for 16 x 4 elements: 16 x 64,
// in rows of 64 bytes: 4096 bytes in front. A slice is both, 266240 bytes, and so is the surface.
constexpr uint64_t kSurface = 266240;

struct Refusal {
  const char* what;
  std::function<void(MemoryLayout&)> change;
  std::string words;
};

void expect_refusals(const ScratchFolder& folder, const LayoutMetadata& valid,
                     const std::vector<Refusal>& refusals) {
  for (const Refusal& refusal : refusals) {
    SCOPED_TRACE(refusal.what);
    LayoutMetadata blob = valid;
    refusal.change(blob.layout);
    const std::string path = folder.file("blob", bytes_of(blob));
    const Outcome run = run_tool("check " + path + " --chip " + hex(stored_chip().chip_id));
    EXPECT_EQ(run.exit_code, 1) << run.err;
    EXPECT_EQ(run.err, "");
    const std::string start = "refused resource record: " + refusal.words + " [";
    EXPECT_TRUE(run.out.starts_with(start)) << run.out << "instead of\n" << start;
    EXPECT_TRUE(run.out.ends_with("]\n")) << run.out;
    const Outcome dumped = run_tool("dump " + path);
    EXPECT_EQ(dumped.exit_code, 0);
    EXPECT_NE(dumped.out.find("\nrefused: " + refusal.words + " ["), std::string::npos)
        << dumped.out.substr(dumped.out.size() - std::min<std::size_t>(dumped.out.size(), 500));
  }
}

TEST(Refusals, OfHeaders) {
  const ScratchFolder folder;
  const LayoutMetadata valid = stored_blob(folder);
  ASSERT_EQ(valid.layout.total_size, kSurface + 5512);
  expect_refusals(
      folder, valid,
      {{"signature", [](MemoryLayout& r) { r.signature = 0x12345678; },
        "the signature is 0x12345678, which is no record's of this kind"},
       {"driver", [](MemoryLayout& r) { r.driver_uuid[4] = 2; },
        "the record's driver UUID says driver signature 4, driver version 2, layout version 3; "
        "expected is driver signature 4, driver version 1, layout version 3"},
       {"layout version", [](MemoryLayout& r) { r.driver_uuid[8] = 9; },
        "the record's driver UUID says driver signature 4, driver version 1, layout version 9; "
        "expected is driver signature 4, driver version 1, layout version 3"},
       {"size", [](MemoryLayout& r) { r.size = 5500; },
        "the record says that it has 5500 bytes; expected are 5512"},
       {"alignment", [](MemoryLayout& r) { r.alignment = 24; },
        "an alignment of 24 bytes is no power of two"},
       {"total size", [](MemoryLayout& r) { r.total_size += 100; },
        "total_size 271852 - 5512 of the record = 266340 bytes of surface, 100 more than a "
        "multiple of the alignment of 4096 bytes"},
       {"no total size", [](MemoryLayout& r) { r.total_size = 0; },
        "total_size must not be 0 bytes"},
       {"samples", [](MemoryLayout& r) { r.samples = 3; }, "3 samples: 1, 2, 4 or 8 are allowed"},
       {"levels", [](MemoryLayout& r) { r.levels = 16; }, "16 levels: 1 to 15 are allowed"},
       {"format", [](MemoryLayout& r) { r.format = 722; },
        "there is no format 722: the last one is 721"}});
}

TEST(Refusals, OfLevels) {
  const ScratchFolder folder;
  const auto second_level = [](MemoryLayout& r) {
    r.levels = 2;
    r.level[1] = r.level[0];
  };
  expect_refusals(
      folder, stored_blob(folder),
      {{"no size", [](MemoryLayout& r) { r.level[0].size = 0; },
        "level 0: the level's size must not be 0 bytes"},
       // 266240 + 5512 = 271752.
       {"size", [](MemoryLayout& r) { r.level[0].size = 271753; },
        "level 0: the level's size of 271753 bytes is 1 more than total_size, 271752 bytes"},
       {"slices", [](MemoryLayout& r) { r.level[0].slices = 2049; },
        "level 0: slices is 2049: 1 to 2048 is allowed"},
       {"tiled", [](MemoryLayout& r) { r.level[0].tiled = 2; },
        "level 0: tiled is 2: 0 or 1 is allowed"},
       {"planes", [](MemoryLayout& r) { r.level[0].planes = 4; },
        "level 0: planes is 4: 1 to 3 is allowed"},
       {"lrz valid", [](MemoryLayout& r) { r.level[0].lrz_valid = 2; },
        "level 0: lrz valid is 2: 0 or 1 is allowed"},
       {"lrz fc valid", [](MemoryLayout& r) { r.level[0].lrz_fc_valid = 3; },
        "level 0: lrz fc valid is 3: 0 or 1 is allowed"},
       {"lrz bits", [](MemoryLayout& r) { r.level[0].lrz_valid = 1; },
        "level 0: lrz valid is 1 and lrz fc valid is 0: the two must be equal"},
       {"linear behind tiled",
        [&](MemoryLayout& r) {
          second_level(r);
          r.level[1].tiled = 0;
        },
        "level 1 is linear behind a tiled one, and linear_fallback is 0"},
       {"tiled behind linear",
        [&](MemoryLayout& r) {
          second_level(r);
          r.level[0].tiled = 0;
          r.level[0].plane[0].flag_valid = 0;
        },
        "level 1 is tiled behind a linear one"},
       {"lrz of one level",
        [&](MemoryLayout& r) {
          second_level(r);
          r.level[1].lrz_valid = r.level[1].lrz_fc_valid = 1;
        },
        "lrz valid of level 1 is not that of level 0"}});
}

TEST(Refusals, OfImages) {
  const ScratchFolder folder;
  expect_refusals(
      folder, stored_blob(folder),
      {// 10240 + 262144 = 272384, 6144 more than the surface.
       {"one slice", [](MemoryLayout& r) { r.level[0].plane[0].image_offset = 10240; },
        "level 0, plane 0: the image ends at offset 10240 + size 262144 = 272384, 6144 bytes "
        "behind the surface's 266240"},
       // 4096 + 4 x 266240 + 262144 = 1331200, 4 slices too many.
       {"five slices", [](MemoryLayout& r) { r.level[0].slices = 5; },
        "level 0, plane 0: the image ends at offset 4096 + 4 further slices x 266240 + size 262144 "
        "= 1331200, 1064960 bytes behind the surface's 266240"},
       {"an end beyond 64 bits",
        [](MemoryLayout& r) { r.level[0].plane[0].image_offset = 0xFFFFFFFFFFFFFFFF; },
        "level 0, plane 0: the image does not end in 64 bits: offset 18446744073709551615 + size "
        "262144, in a surface of 266240 bytes"},
       // 257 x 1024 = 263168.
       {"rows", [](MemoryLayout& r) { r.level[0].plane[0].image_height = 257; },
        "level 0, plane 0: 257 rows x 1024 bytes = 263168 bytes, 1024 more than the 262144 bytes "
        "of the image"},
       {"slice pitch", [](MemoryLayout& r) { r.level[0].plane[0].image_slice_pitch = 262143; },
        "level 0, plane 0: the image of one slice takes 262144 bytes, 1 more than the slice pitch "
        "of 262143 bytes"},
       // 257 x 4 = 1028.
       {"elements", [](MemoryLayout& r) { r.level[0].plane[0].image_width = 257; },
        "level 0, plane 0: 257 elements x 4 bytes = 1028 bytes, 4 more than the pitch of 1024 "
        "bytes"},
       {"dimensions",
        [](MemoryLayout& r) {
          r.level[0].plane[0].image_width = 0;
          r.level[0].plane[0].image_element_size = 0;
        },
        "level 0, plane 0: image width, image element size must not be 0"}});
}

TEST(Refusals, OfFlagBuffers) {
  const ScratchFolder folder;
  expect_refusals(
      folder, stored_blob(folder),
      {{"valid", [](MemoryLayout& r) { r.level[0].plane[0].flag_valid = 2; },
        "level 0, plane 0: flag_valid is 2: 0 or 1 is allowed"},
       {"linear", [](MemoryLayout& r) { r.level[0].tiled = 0; },
        "level 0, plane 0: a linear level has a flag buffer, which only tiled ones may have"},
       {"bounds", [](MemoryLayout& r) { r.level[0].plane[0].flag_offset = 262145; },
        "level 0, plane 0: the flag buffer ends at offset 262145 + size 4096 = 266241, 1 byte "
        "behind the surface's 266240"},
       {"no pitch", [](MemoryLayout& r) { r.level[0].plane[0].flag_pitch = 0; },
        "level 0, plane 0: the flag buffer's pitch must not be 0 bytes"},
       {"pitch", [](MemoryLayout& r) { r.level[0].plane[0].flag_pitch = 266241; },
        "level 0, plane 0: the flag buffer's pitch of 266241 bytes is more than its slice pitch of "
        "266240 bytes"},
       {"slice pitch", [](MemoryLayout& r) { r.level[0].plane[0].flag_slice_pitch = 64; },
        "level 0, plane 0: a flag buffer of 4096 bytes does not fit its slice pitch of 64 bytes"}});
}

TEST(Refusals, OfLowResolutionDepth) {
  const ScratchFolder folder;
  LayoutMetadata valid = stored_blob(folder);
  LevelLayout& level = valid.layout.level[0];
  level.lrz_valid = level.lrz_fc_valid = 1;
  level.lrz_offset = 0;
  level.lrz_pitch = level.lrz_width = 64;
  level.lrz_height = 32;
  level.lrz_size = level.lrz_slice_pitch = 2048;
  level.lrz_fc_size = 512;
  const std::string path = folder.file("blob", bytes_of(valid));
  ASSERT_EQ(run_tool("check " + path + " --chip " + hex(stored_chip().chip_id)).exit_code, 0);
  expect_refusals(
      folder, valid,
      {{"bounds", [](MemoryLayout& r) { r.level[0].lrz_offset = 266240; },
        "level 0: the LRZ buffer ends at offset 266240 + size 2048 = 268288, 2048 bytes behind the "
        "surface's 266240"},
       {"size", [](MemoryLayout& r) { r.level[0].lrz_height = 33; },
        "level 0: 33 rows x 64 bytes = 2112 bytes, 64 more than the 2048 bytes of the LRZ buffer"},
       {"pitch", [](MemoryLayout& r) { r.level[0].lrz_width = 65; },
        "level 0: the LRZ buffer's pitch of 64 bytes is less than its width of 65 elements"},
       {"dimensions", [](MemoryLayout& r) { r.level[0].lrz_width = 0; },
        "level 0: an LRZ buffer of 0 elements x 32 rows: neither must be 0"},
       {"fast clear", [](MemoryLayout& r) { r.level[0].lrz_fc_offset = 266000; },
        "level 0: the fast-clear buffer ends at offset 266000 + size 512 = 266512, 272 bytes "
        "behind the surface's 266240"}});
}

// Which chip the record is made for, and which one was asked about.
TEST(Refusals, OfAnotherChip) {
  const ScratchFolder folder;
  const std::string path = folder.file("blob", bytes_of(stored_blob(folder)));
  const harness::ChipData& other = harness::full_chip(7);
  const Outcome run = run_tool("check " + path + " --chip " + hex(other.chip_id));
  EXPECT_EQ(run.exit_code, 1);
  EXPECT_TRUE(
      run.out.starts_with("refused resource record: the record's device UUID says family "
                          "6, model 0x"))
      << run.out;
  const std::size_t expected = run.out.find("; expected is family 7, model 0x");
  ASSERT_NE(expected, std::string::npos) << run.out;
  EXPECT_NE(run.out.find("chip 0x0"), std::string::npos) << run.out;
  // For the chip that it names it is valid.
  EXPECT_NE(run_tool("dump " + path).out.find("\naccepted\n"), std::string::npos);
}

TEST(Refusals, OfSurfaceRecords) {
  const ScratchFolder folder;
  const auto refused = [&folder](const SurfaceMetadata& record) {
    return run_tool("check " + folder.file("surface", bytes_of(record)) + " --chip " +
                    hex(stored_chip().chip_id))
        .out;
  };
  SurfaceMetadata record = stored_surface();
  record.level[0].plane[0].actual_height = 65;  // x 256 bytes = 16640
  EXPECT_TRUE(
      refused(record).starts_with("refused surface record: level 0, plane 0: 65 rows x 256 "
                                  "bytes = 16640 bytes, 256 more than the 16384 bytes of "
                                  "the image ["));
  record = stored_surface();
  record.level[0].plane[0].actual_width = 65;  // x 4 bytes = 260
  EXPECT_TRUE(
      refused(record).starts_with("refused surface record: level 0, plane 0: 65 elements x "
                                  "4 bytes = 260 bytes, 4 more than the pitch of 256 bytes "
                                  "["));
  record = stored_surface();
  record.level[0].plane[0].actual_height = 0;
  EXPECT_TRUE(refused(record).starts_with(
      "refused surface record: level 0, plane 0: actual height must not be 0 ["));
  record = stored_surface();
  record.guid = 0;
  EXPECT_TRUE(refused(record).starts_with("refused surface record: the guid must not be 0 ["));
  record = stored_surface();
  record.size = 5299;
  EXPECT_TRUE(refused(record).starts_with(
      "refused surface record: the record says that it has 5299 bytes; expected are 5300 ["));
}

// The literals of a source file that begin so.
std::set<std::string> literals_in(const std::filesystem::path& path,
                                  const std::string& beginnings) {
  std::ifstream file(path);
  const std::string text((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
  const std::regex literal("\"((?:" + beginnings + ")[^\"]*)\"");
  std::set<std::string> found;
  for (std::sregex_iterator at(text.begin(), text.end(), literal), end; at != end; ++at) {
    found.insert((*at)[1]);
  }
  return found;
}

// The words of a rule are found by how its message begins: each message of the validators is known.
TEST(Refusals, EveryMessageOfTheValidatorsHasWords) {
  const std::filesystem::path sources = KORVEL_SOURCES;
  const std::string beginnings = "Metadata |Size of metadata";
  const std::set<std::string> known =
      literals_in(sources / "tools/record/refusal_words.cpp", beginnings);
  std::set<std::string> messages;
  for (const auto& file : std::filesystem::directory_iterator(sources / "src/layout")) {
    messages.merge(literals_in(file.path(), beginnings));
  }
  EXPECT_GE(messages.size(), 35U);
  for (const std::string& message : messages) {
    const auto starts = [&message](const std::string& rule) { return message.starts_with(rule); };
    EXPECT_NUMBER(std::count_if(known.begin(), known.end(), starts), 1) << message;
  }
}

// What cannot be judged as a whole says so.
TEST(Refusals, NoVerdictOnHalfARecord) {
  const ScratchFolder folder;
  LayoutMetadata blob = stored_blob(folder);
  blob.header.record_offset = 0xFFFFFFFF;
  const Outcome run = run_tool("dump " + folder.file("blob", bytes_of(blob)));
  EXPECT_EQ(run.exit_code, 0);
  EXPECT_NE(run.out.find("\nnone: the blob header's record offset 4294967295 leaves no room"),
            std::string::npos);
}

}  // namespace
}  // namespace tool_test
