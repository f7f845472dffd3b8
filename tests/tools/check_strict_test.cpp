// What check --strict finds in records that the rules accept. Numbers are worked out by hand.
#include <gtest/gtest.h>

#include "tests/tools/stored_records.h"

namespace tool_test {
namespace {

using nlohmann::json;

template <typename Record>
std::vector<std::string> findings_in(const Record& record) {
  const ScratchFolder folder;
  const std::string check =
      "check " + folder.file("record", bytes_of(record)) + " --chip " + hex(stored_chip().chip_id);
  const Outcome strict = run_tool(check + " --strict --json");
  const json found = json::parse(strict.out, nullptr, false);
  EXPECT_FALSE(found.is_discarded()) << strict.out << strict.err;
  if (found.is_discarded()) return {};
  EXPECT_EQ(found.at("valid"), true) << found.at("reason");
  EXPECT_EQ(found.at("warnings"), json::array());
  const std::vector<std::string> findings = found.at("findings");
  EXPECT_EQ(strict.exit_code, findings.empty() ? 0 : 1);
  std::string lines;
  for (const std::string& finding : findings) {
    lines += "korvel-layout: warning: " + finding + "\n";
  }
  EXPECT_EQ(strict.err, lines);
  // Nothing of it without --strict.
  const Outcome lenient = run_tool(check);
  EXPECT_EQ(lenient.exit_code, 0);
  EXPECT_EQ(lenient.err, "");
  return findings;
}

using Findings = std::vector<std::string>;

// A request on every family: --strict has no finding in what the library lays out.
TEST(CheckStrict, NoneOnLayoutsOfTheProgram) {
  const ScratchFolder folder;
  const std::string path = folder.path("blob");
  for (const uint32_t family_id : {5U, 6U, 7U}) {
    const std::string chip = " --chip " + hex(harness::full_chip(family_id).chip_id);
    for (const char* request :
         {"--format 28 --size 1918x1080 --linear", "--format 28 --size 2000x1000 --linear",
          "--format 28 --size 2000x1000 --linear --levels 1",
          "--format 28 --size 1920x1080x5 --ubwc", "--format 28 --size 100x100x5 --ubwc --levels 1",
          "--format nv12 --size 1280x720 --ubwc", "--format nv12 --size 1280x720 --linear",
          "--format bc1_unorm --size 2048x2048 --levels 12",
          "--format 28 --size 2048x2048x2 --levels 12 --ubwc --extra --extended",
          "--format d32_float --size 1000x1000x6 --samples 4 --ubwc",
          "--format 508 --size 1000x10 --linear", "--format astc_12x12_unorm --size 100x100"}) {
      const Outcome written =
          run_tool("show " + std::string(request) + chip + " --force --blob " + path);
      ASSERT_EQ(written.exit_code, 0) << written.err;
      const Outcome run = run_tool("check " + path + " --strict");  // of the chip that it names
      EXPECT_EQ(run.exit_code, 0) << request << chip << ": " << run.err;
      EXPECT_TRUE(run.out.starts_with("valid resource record for chip 0x"));
    }
  }
}

// 256 x 256 elements of 4 bytes in tiles of 64 x 16: a pitch of 1024 and 262144 bytes; flags of tiles
// of 16 x 4: 16 x 64, in rows of 64 bytes: 4096 bytes in front of the image.
TEST(CheckStrict, NumbersBelowTheChipsRules) {
  const ScratchFolder folder;
  const LayoutMetadata valid = stored_blob(folder);
  ASSERT_EQ(valid.layout.level[0].plane[0].image_size, 262144U);
  ASSERT_EQ(valid.layout.level[0].plane[0].flag_size, 4096U);
  LayoutMetadata blob = valid;
  PlaneLayout& plane = blob.layout.level[0].plane[0];
  EXPECT_EQ(findings_in(blob), Findings{});

  plane.image_width = 250;  // 1000 bytes
  plane.image_pitch = 1000;
  EXPECT_EQ(
      findings_in(blob),
      (Findings{"level 0, plane 0: a pitch of 1000 bytes is less than the 1024 that the chip's "
                "rules ask for (250 elements; tiled, 4 bytes an element, so tiles of 64 "
                "elements x 16 rows: the width takes whole tiles)"}));

  plane = valid.layout.level[0].plane[0];
  plane.image_height = 250;  // 16 tiles high: 256
  EXPECT_EQ(findings_in(blob),
            (Findings{"level 0, plane 0: a height of 250 rows is less than the 256 that the chip's "
                      "rules ask for (250 rows; tiled, 4 bytes an element, so tiles of 64 elements "
                      "x 16 rows: the height takes whole tiles)"}));

  plane = valid.layout.level[0].plane[0];
  plane.flag_pitch = 1;
  plane.flag_size = 4095;
  blob.layout.alignment = 2048;
  EXPECT_EQ(
      findings_in(blob),
      (Findings{"an alignment of 2048 bytes is less than the 4096 that the chip's rules ask "
                "for",
                "level 0, plane 0: a flag pitch of 1 byte is less than the 64 that the chip's "
                "rules ask for (256 elements x 256 rows)",
                "level 0, plane 0: a flag buffer of 4095 bytes is less than the 4096 that the "
                "chip's rules ask for (256 elements x 256 rows)"}));
}

TEST(CheckStrict, BuffersThatOverlap) {
  const ScratchFolder folder;
  LayoutMetadata blob = stored_blob(folder);
  blob.layout.level[0].plane[0].image_offset = 4000;
  EXPECT_EQ(
      findings_in(blob),
      (Findings{"the flag buffer of level 0, plane 0 (bytes 0 to 4095) and the image of level "
                "0, plane 0 (bytes 4000 to 266143) share 96 bytes"}));
}

// A plane ends one slice behind its start, so that slice 1 of the first one is where the second one
// starts: 64 x 64 bytes in a tile of 128 x 32 are 8192 bytes; 32-element tiles of pairs take 4096 less.
TEST(CheckStrict, SlicesOfPlanesThatOverlap) {
  const ScratchFolder folder;
  const std::string path = folder.path("blob");
  run_tool("show --format nv12 --size 64x64x2 --chip family-6 --blob " + path);
  const Outcome run = run_tool("check " + path + " --strict");
  EXPECT_EQ(run.exit_code, 1);
  EXPECT_NE(
      run.err.find("the image of level 0, plane 0, slice 1 (bytes 8192 to 16383) and the image "
                   "of level 0, plane 1, slice 0"),
      std::string::npos)
      << run.err;
}

TEST(CheckStrict, LevelsThatGrow) {
  const ScratchFolder folder;
  LayoutMetadata blob = stored_blob(folder, "--levels 3");
  blob.layout.level[2].size = blob.layout.level[1].size + 1;
  // 128 x 128 elements of 4 bytes.
  EXPECT_EQ(findings_in(blob),
            (Findings{"level 2: its size of 65537 bytes is 1 more than the 65536 of level 1, which "
                      "is larger in texels"}));
}

// The actual width and height of a surface record are known: 64 x 64 elements of 4 bytes.
TEST(CheckStrict, SurfaceRecords) {
  SurfaceMetadata record = stored_surface();
  record.alignment = 4096;
  EXPECT_EQ(findings_in(record), Findings{});
  record.level[0].plane[0].image_height = 60;
  record.level[0].plane[0].actual_height = 60;
  EXPECT_EQ(
      findings_in(record),
      (Findings{"level 0, plane 0: a height of 60 rows is less than the 64 that the chip's "
                "rules ask for (60 rows; tiled, 4 bytes an element, so tiles of 64 elements x "
                "16 rows: the height takes whole tiles)"}));
}

TEST(CheckStrict, WarningsCountToo) {
  const ScratchFolder folder;
  LayoutMetadata blob = stored_blob(folder);
  blob.header.blob_size = 7;
  const std::string check = "check " + folder.file("blob", bytes_of(blob));
  EXPECT_EQ(run_tool(check).exit_code, 0);
  EXPECT_EQ(run_tool(check + " --strict").exit_code, 1);
}

TEST(Check, TheChipThatTheRecordNames) {
  const ScratchFolder folder;
  LayoutMetadata blob = stored_blob(folder);
  const Outcome run = run_tool("check " + folder.file("blob", bytes_of(blob)));
  EXPECT_EQ(run.exit_code, 0) << run.err;
  EXPECT_TRUE(run.out.starts_with("valid resource record for chip 0x")) << run.out;
  blob.layout.device_uuid[4] = 9;  // of a family that there is not
  EXPECT_NE(reason_of_refusal(run_tool("check " + folder.file("blob", bytes_of(blob))))
                .find("names no chip that is known (family 9,"),
            std::string::npos);
}

TEST(Check, Json) {
  const ScratchFolder folder;
  LayoutMetadata blob = stored_blob(folder);
  json found = json_of("check " + folder.file("blob", bytes_of(blob)));
  EXPECT_EQ(found.at("valid"), true);
  EXPECT_EQ(found.at("kind"), "resource");
  EXPECT_TRUE(found.at("reason").is_null());
  EXPECT_TRUE(found.at("findings").is_null());
  EXPECT_EQ(found.at("chip").at("family_id"), stored_chip().family_id);
  blob.layout.samples = 3;
  const Outcome refused = run_tool("check --json " + folder.file("blob", bytes_of(blob)));
  EXPECT_EQ(refused.exit_code, 1);
  found = json::parse(refused.out, nullptr, false);
  EXPECT_EQ(found.at("valid"), false);
  EXPECT_TRUE(found.at("reason").get<std::string>().starts_with("3 samples: 1, 2, 4 or 8"));
}

}  // namespace
}  // namespace tool_test
