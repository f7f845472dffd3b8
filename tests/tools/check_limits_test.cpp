// Records that the library accepts although something of them does not lie inside the surface: the
// program says so beside the verdict.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <sstream>
#include <string>
#include <vector>

#include "tests/tools/stored_records.h"

namespace tool_test {
namespace {

// A valid layout record of one level and one plane, 16 rows x 256 bytes in an image of 4096, with
// depth buffers, in a surface of 0x100000 = 1048576 bytes.
MemoryLayout stored_layout() {
  MemoryLayout record = records::valid_record<records::ResourceKind>(
      {.levels = 1,
       .slices = 1,
       .planes = 1,
       .spare_planes = false,
       .uuids = records::make_uuids({.family_id = stored_chip().family_id,
                                     .model_code = stored_chip().model_code,
                                     .rev_id = stored_chip().rev_id})});
  record.alignment = 1;
  return record;
}

SurfaceMetadata unaligned_surface() {
  SurfaceMetadata record = stored_surface();
  record.alignment = 1;
  return record;
}

// The warnings on a record that is accepted, without the words that stand in front of each.
template <typename Record>
std::vector<std::string> warnings_on(const Record& record) {
  const ScratchFolder folder;
  const Outcome run = run_tool("check " + folder.file("record", bytes_of(record)) + " --chip " +
                               hex(stored_chip().chip_id));
  EXPECT_EQ(run.exit_code, 0) << run.out << run.err;
  EXPECT_TRUE(run.out.starts_with("valid ")) << run.out;
  EXPECT_EQ(count_lines(run.out), 1U) << run.out;
  const std::string front = "korvel-layout: warning: ";
  std::vector<std::string> warnings;
  std::istringstream lines(run.err);
  for (std::string line; std::getline(lines, line);) {
    EXPECT_TRUE(line.starts_with(front)) << line;
    warnings.push_back(line.substr(std::min(front.size(), line.size())));
  }
  return warnings;
}

template <typename Record>
struct Row {
  const char* what;
  void (*change)(Record& record);
  std::vector<std::string> warnings;
};

template <typename Record>
void expect_warnings(const Record& valid, const std::vector<Row<Record>>& rows) {
  for (const Row<Record>& row : rows) {
    Record record = valid;
    row.change(record);
    EXPECT_EQ(warnings_on(record), row.warnings) << row.what;
  }
}

TEST(CheckLimits, SurfaceSizesOfLayouts) {
  using R = MemoryLayout;
  expect_warnings<R>(
      stored_layout(),
      {
          {"as it is", [](R&) {}, {}},
          // 2^64 - (5512 - 100).
          {"total_size below the record's own",
           [](R& r) {
             r.total_size = 100;
             r.level[0].size = 100;
           },
           {"total_size is 100, less than the 5512 bytes of the record itself: the surface size "
            "wraps, and buffers are held against 18446744073709546204 bytes, next to no bound"}},
          // 2^32 bytes of rows in none.
          {"total_size of the record's own",
           [](R& r) {
             r.total_size = 5512;
             r.level[0].size = 1;
             r.level[0].lrz_valid = r.level[0].lrz_fc_valid = 0;
             PlaneLayout& plane = r.level[0].plane[0];
             plane.flag_valid = 0;
             plane.image_offset = plane.image_size = 0;
             plane.image_pitch = plane.image_height = 65536;
           },
           {"level 0: its size of 1 bytes is more than the 0 of the surface: it is compared with "
            "total_size, which counts the record too",
            "level 0, plane 0: 65536 rows of 65536 bytes are 4294967296 bytes, more than the 0 of "
            "the image: their product wraps at 32 bits"}},
          {"2^31 - 1 bytes", [](R& r) { r.total_size = 5512 + 0x7FFFFFFFULL; }, {}},
          // 2^64 - 2^31.
          {"2^31 bytes",
           [](R& r) { r.total_size = 5512 + 0x80000000ULL; },
           {"the surface has 2147483648 bytes, of which the rules take the low 32 bits with their "
            "sign: buffers are held against 18446744071562067968 bytes, next to no bound"}},
          // 2^32 + 2^31, of which the low half is 2^31 as well.
          {"2^32 + 2^31 bytes",
           [](R& r) { r.total_size = 5512 + 0x180000000ULL; },
           {"the surface has 6442450944 bytes, of which the rules take the low 32 bits with their "
            "sign: buffers are held against 18446744071562067968 bytes, next to no bound"}},
          {"2^32 + 2^20 bytes",
           [](R& r) { r.total_size = 5512 + 0x100100000ULL; },
           {"the surface has 4296015872 bytes, of which the rules take the low 32 bits: buffers "
            "are held against the first 1048576 bytes alone"}},
          // The sign's copies are the surface's own upper half.
          {"2^64 - 2^31 bytes", [](R& r) { r.total_size = 5512 + 0xFFFFFFFF80000000ULL; }, {}},
      });
}

TEST(CheckLimits, SurfaceSizesOfSurfaceRecords) {
  using R = SurfaceMetadata;
  expect_warnings<R>(
      unaligned_surface(),
      {
          {"as it is", [](R&) {}, {}},
          // 2^64 - (5300 - 100).
          {"total_size below the record's own",
           [](R& r) {
             r.total_size = 100;
             r.level[0].size = 100;
           },
           {"total_size is 100, less than the 5300 bytes of the record itself: the surface size "
            "wraps, and buffers are held against 18446744073709546416 bytes, next to no bound"}},
          // All 64 bits count.
          {"2^31 bytes", [](R& r) { r.total_size = 5300 + 0x80000000ULL; }, {}},
          {"2^32 + 2^20 bytes", [](R& r) { r.total_size = 5300 + 0x100100000ULL; }, {}},
      });
}

TEST(CheckLimits, ProductsOfLayouts) {
  using R = MemoryLayout;
  expect_warnings<R>(
      stored_layout(),
      {
          // 2^16 x 2^16 = 2^32, of which the low half is 0.
          {"rows",
           [](R& r) { r.level[0].plane[0].image_pitch = r.level[0].plane[0].image_height = 65536; },
           {"level 0, plane 0: 65536 rows of 65536 bytes are 4294967296 bytes, more than the 4096 "
            "of the image: their product wraps at 32 bits"}},
          // 4 x (2^30 + 64) = 2^32 + 256, of which the low half is the pitch.
          {"elements",
           [](R& r) { r.level[0].plane[0].image_width = 0x40000040; },
           {"level 0, plane 0: 1073741888 elements of 4 bytes are 4294967552 bytes, more than the "
            "256 of the image's pitch: their product wraps at 32 bits"}},
          // 64 x (2^26 + 32) = 2^32 + 2048, of which the low half is the size.
          {"LRZ rows",
           [](R& r) { r.level[0].lrz_height = 0x4000020; },
           {"level 0: 67108896 LRZ rows of 64 bytes are 4294969344 bytes, more than the 2048 of "
            "the LRZ buffer: their product wraps at 32 bits"}},
          {"LRZ rows of a level without an LRZ buffer",
           [](R& r) {
             r.level[0].lrz_height = 0x4000020;
             r.level[0].lrz_valid = r.level[0].lrz_fc_valid = 0;
           },
           {}},
          // Level 1 and its second plane; nobody reads the third.
          {"lower levels",
           [](R& r) {
             r.level[1] = r.level[0];
             r.levels = 2;
             r.level[1].planes = 2;
             r.level[1].plane[1] = r.level[1].plane[2] = r.level[0].plane[0];
             r.level[1].plane[1].image_width = 0x40000000;
             r.level[1].plane[2].image_width = 0x40000000;
             r.level[2] = r.level[1];
           },
           {"level 1, plane 1: 1073741824 elements of 4 bytes are 4294967296 bytes, more than the "
            "256 of the image's pitch: their product wraps at 32 bits"}},
      });
}

TEST(CheckLimits, ProductsOfSurfaceRecords) {
  using R = SurfaceMetadata;
  expect_warnings<R>(
      unaligned_surface(),
      {
          // 256 x (2^24 + 64) = 2^32 + 16384, of which the low half is the image's size.
          {"actual rows",
           [](R& r) { r.level[0].plane[0].actual_height = 0x1000040; },
           {"level 0, plane 0: 16777280 rows of 256 bytes are 4294983680 bytes, more than the 16384 "
            "of the image: their product wraps at 32 bits"}},
          {"actual elements",
           [](R& r) { r.level[0].plane[0].actual_width = 0x40000000; },
           {"level 0, plane 0: 1073741824 elements of 4 bytes are 4294967296 bytes, more than the "
            "256 of the image's pitch: their product wraps at 32 bits"}},
          // Allocated sizes are compared with 0 alone.
          {"allocated size",
           [](R& r) {
             r.level[0].plane[0].image_height = 0x1000040;
             r.level[0].plane[0].image_width = 0x40000000;
           },
           {}},
          // The product wraps, and the image has room for all of it.
          {"an image of 2^32 bytes",
           [](R& r) {
             r.total_size = 5300 + 0x200000000ULL;
             r.level[0].plane[0].image_pitch = r.level[0].plane[0].actual_height = 65536;
             r.level[0].plane[0].image_size = 0x100000000ULL;
             r.level[0].plane[0].image_slice_pitch = 0x100000000ULL;
           },
           {}},
      });
}

// What is compared with total_size, or with nothing.
TEST(CheckLimits, LevelSizesAndTheExtraBuffer) {
  using R = MemoryLayout;
  expect_warnings<R>(
      stored_layout(),
      {
          {"a level of the whole surface", [](R& r) { r.level[0].size = 1048576; }, {}},
          {"a level of the surface and the record",
           [](R& r) { r.level[0].size = 1048576 + 5512; },
           {"level 0: its size of 1054088 bytes is more than the 1048576 of the surface: it is "
            "compared with total_size, which counts the record too"}},
          {"the extra buffer at the surface's end",
           [](R& r) {
             r.extra_valid = 1;
             r.extra_offset = 1048575;
             r.extra_size = 1;
           },
           {}},
          {"the extra buffer beyond it",
           [](R& r) {
             r.extra_valid = 1;
             r.extra_offset = 1048575;
             r.extra_size = 2;
           },
           {"the extra buffer of 2 bytes at offset 1048575 ends outside the 1048576 bytes of the "
            "surface: no rule looks at it"}},
          {"an end that wraps",
           [](R& r) {
             r.extra_valid = 1;
             r.extra_offset = 0xFFFFFFFFFFFFFFFF;
             r.extra_size = 2;
           },
           {"the extra buffer of 2 bytes at offset 18446744073709551615 ends outside the 1048576 "
            "bytes of the surface: no rule looks at it"}},
          {"the slices of the extra buffer that fit",
           [](R& r) {
             r.extra_valid = 1;
             r.level[0].slices = 3;
             r.extra_size = 3 * 8224;
             r.extra_slice_pitch = 8224;
           },
           {}},
          {"the slices of the extra buffer that do not",
           [](R& r) {
             r.extra_valid = 1;
             r.level[0].slices = 3;
             r.extra_size = 3 * 8224 - 1;
             r.extra_slice_pitch = 8224;
           },
           {"the extra buffer of 24671 bytes does not hold 3 slices of 8224 bytes: no rule looks at "
            "it"}},
          {"no extra buffer", [](R& r) { r.extra_offset = 0xFFFFFFFFFFFFFFFF; }, {}},
      });
  SurfaceMetadata surface = unaligned_surface();
  surface.level[0].size = surface.total_size;
  EXPECT_EQ(warnings_on(surface),
            std::vector<std::string>{
                "level 0: its size of 21684 bytes is more than the 16384 of the surface: it is "
                "compared with total_size, which counts the record too"});
}

// A record of version 1 ends before the words of an extra buffer: in a blob, something else stands
// there.
TEST(CheckLimits, RecordsTooShortForAnExtraBuffer) {
  LayoutMetadata blob{};
  blob.header = {KORVEL_HEADER_MAGIC,       KORVEL_HEADER_VERSION,  KORVEL_BLOB_BYTES,
                 KORVEL_HEADER_RECORD_KIND, sizeof(MetadataHeader), KORVEL_LAYOUT_BYTES_VERSION_3};
  blob.layout = stored_layout();
  const uint32_t version = 1;
  std::memcpy(blob.layout.driver_uuid + 8, &version, sizeof version);
  blob.layout.size = KORVEL_LAYOUT_BYTES_VERSION_1;
  blob.layout.extra_valid = 1;
  blob.layout.extra_size = 0xFFFFFFFFFFFFFFFF;
  EXPECT_EQ(warnings_on(blob), std::vector<std::string>{});
}

TEST(CheckLimits, EachCauseHasItsLine) {
  MemoryLayout record = stored_layout();
  record.total_size = 5512 + 0x80000000ULL;
  record.level[0].plane[0].image_width = 0x40000000;
  record.level[0].lrz_height = 0x4000020;
  EXPECT_EQ(warnings_on(record).size(), 3U);
}

// What the program itself lays out lies inside.
TEST(CheckLimits, NoneOnLayoutsOfTheProgram) {
  const ScratchFolder folder;
  for (const char* more : {"", "--extra", "--levels 9", "--levels 9 --extra --extended"}) {
    EXPECT_EQ(warnings_on(stored_blob(folder, more)), std::vector<std::string>{}) << more;
  }
}

TEST(CheckLimits, NoneOnRefusedRecords) {
  const ScratchFolder folder;
  MemoryLayout record = stored_layout();
  record.total_size = 5512 + 0x80000000ULL;
  record.samples = 3;
  const Outcome run = run_tool("check " + folder.file("record", bytes_of(record)) + " --chip " +
                               hex(stored_chip().chip_id));
  EXPECT_EQ(run.exit_code, 1);
  EXPECT_EQ(run.err, "");
}

}  // namespace
}  // namespace tool_test
