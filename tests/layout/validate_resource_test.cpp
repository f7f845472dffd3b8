// What only the validator of resource records checks: layout versions, and a surface size of 32
// bits.
#include "tests/layout/stored_records.h"

namespace layout_test {
namespace {

using R = MemoryLayout;

std::string driver_text(uint32_t version) {
  return "04000000-0100-0000-0" + std::to_string(version) + "00-000000000000";
}

TEST(ValidateResource, LayoutVersionsAndSizes) {
  struct Row {
    uint32_t stored_version;
    uint32_t own_version;
    uint32_t size;
    uint32_t expected_size;  // 0: the version is refused
    uint32_t reported_version;
  };
  constexpr Row kRows[] = {
      {3, 3, 5512, 5512, 3},
      {3, 3, 5511, 5512, 3},
      {3, 3, 5513, 5512, 3},
      {3, 3, 5504, 5512, 3},
      {3, 3, 5472, 5512, 3},
      {3, 3, 0, 5512, 3},
      {3, 3, 0xFFFFFFFF, 5512, 3},
      {1, 3, 5472, 5472, 1},
      {1, 3, 5471, 5472, 1},
      {1, 3, 5504, 5472, 1},
      {1, 3, 5512, 5472, 1},
      {2, 3, 5504, 5504, 2},
      {2, 3, 5512, 5504, 2},
      {2, 3, 5472, 5504, 2},
      {4, 3, 5512, 0, 0},
      {0, 3, 5472, 0, 0},
      // Equal versions count as the current one, whatever they are.
      {4, 4, 5512, 5512, 3},
      {4, 4, 5520, 5512, 3},
      {0, 0, 5512, 5512, 3},
      {1, 1, 5512, 5512, 3},
      {1, 1, 5472, 5512, 3},
      {2, 2, 5504, 5512, 3},
      // Others go by the record's version.
      {3, 4, 5512, 5512, 3},
      {3, 4, 5504, 5512, 3},
      {3, 1, 5512, 5512, 3},
      {1, 4, 5472, 5472, 1},
      {2, 1, 5504, 5504, 2},
      {1, 2, 5512, 5472, 1},
      {5, 4, 5512, 0, 0},
  };
  harness::Gpu gpu(harness::kUnknownChip);
  for (const Row& row : kRows) {
    R record = valid<Resource>();
    put_words(record.driver_uuid, 4, 1, row.stored_version, 0);
    record.size = row.size;
    record.total_size = row.expected_size + kSurface;
    Uuid own;
    put_words(own, 4, 1, row.own_version, 0);
    std::string expected;
    if (row.expected_size == 0) {
      expected = "Metadata memory layout version mismatch {store uuid " +
                 driver_text(row.stored_version) + ", struct uuid " + driver_text(row.own_version) +
                 "}";
    } else if (row.size != row.expected_size) {
      expected = "Size of metadata is mismatched {stored size " + std::to_string(row.size) +
                 ", struct size: " + std::to_string(row.expected_size) +
                 ", version: " + std::to_string(row.reported_version) + " }";
    }
    // No version is read beyond its own end.
    const std::size_t readable = row.expected_size == 0 ? 5472 : row.expected_size;
    EXPECT_EQ(verdict<Resource>(gpu, record, readable, nullptr, own), expected)
        << row.stored_version << " for " << row.own_version << ", " << row.size;
  }
}

TEST(ValidateResource, NothingIsReadBehindTheLastLevel) {
  harness::Gpu gpu(harness::kUnknownChip);
  for (const uint32_t tiled : {0U, 1U}) {
    R record = valid<Resource>();
    put_words(record.driver_uuid, 4, 1, 1, 0);
    record.size = 5472;  // the first version ends with its fifteenth level
    record.total_size = 5472 + kSurface;
    record.levels = 15;
    for (LevelLayout& level : record.level) {
      put_valid_level(level, 3);
      level.tiled = tiled;
      remove_lrz(level);
      if (tiled == 0) remove_flags(level);
    }
    EXPECT_EQ(verdict<Resource>(gpu, record, 5472), "") << tiled;
  }
}

TEST(ValidateResource, TheSurfaceSizeIsCountedFromTheVersionsOwnSize) {
  struct Row {
    uint32_t version;
    uint32_t size;
    uint64_t total;
    const char* text;
  };
  constexpr Row kRows[] = {
      {1, 5472, 5472 + kSurface, ""},
      {1, 5472, 5512 + kSurface,
       "Metadata surface size is not aligned {size 1054088, alignment 4096}"},
      {2, 5504, 5504 + kSurface, ""},
      {2, 5504, 5472 + kSurface,
       "Metadata surface size is not aligned {size 1054048, alignment 4096}"},
  };
  harness::Gpu gpu(harness::kUnknownChip);
  for (const Row& row : kRows) {
    R record = valid<Resource>();
    put_words(record.driver_uuid, 4, 1, row.version, 0);
    record.size = row.size;
    record.total_size = row.total;
    EXPECT_EQ(verdict<Resource>(gpu, record, row.size), row.text);
  }
}

TEST(ValidateResource, OfTheDriverTheSecondWordMustAgree) {
  harness::Gpu gpu(harness::kUnknownChip);
  struct Row {
    uint32_t words[4];
    const char* stored;  // null: accepted
  };
  constexpr Row kRows[] = {
      {{5, 1, 3, 0}, nullptr},
      {{0, 1, 3, 0xFFFFFFFF}, nullptr},
      {{4, 0, 3, 0}, "04000000-0000-0000-0300-000000000000"},
      {{4, 2, 3, 0}, "04000000-0200-0000-0300-000000000000"},
      {{4, 0x01000001, 3, 0}, "04000000-0100-0001-0300-000000000000"},
      {{4, 2, 9, 7}, "04000000-0200-0000-0900-000007000000"},
  };
  for (const Row& row : kRows) {
    R record = valid<Resource>();
    put_words(record.driver_uuid, row.words[0], row.words[1], row.words[2], row.words[3]);
    const std::string expected =
        row.stored == nullptr ? ""
                              : std::string("Metadata driver version mismatch {store uuid ") +
                                    row.stored + ", struct uuid " + kDriverText + "}";
    EXPECT_EQ(verdict<Resource>(gpu, record), expected);
  }
}

TEST(ValidateResource, ImageSizes) {
  const std::string sizes = "Metadata level image size mismatch {level 1, plane 1, ";
  const std::string pitch = "Metadata level image pitch mismatch {level 1, plane 1, ";
  const std::string zero = "Metadata level image invalid dimensions {level 1, plane 1, ";
  check_changes_of_both<Resource>({
      {"size", [](R& r) { r.level[1].plane[1].image_size = 0x1FFF; },
       sizes + "image size 8191, image pitch 256, image height 32, image slice pitch 32768}"},
      {"height", [](R& r) { r.level[1].plane[1].image_height = 33; },
       sizes + "image size 8192, image pitch 256, image height 33, image slice pitch 32768}"},
      {"height", [](R& r) { r.level[1].plane[1].image_height = 31; }, ""},
      {"pitch", [](R& r) { r.level[1].plane[1].image_pitch = 257; },
       sizes + "image size 8192, image pitch 257, image height 32, image slice pitch 32768}"},
      {"slice pitch", [](R& r) { r.level[1].plane[1].image_slice_pitch = 0x2000; }, ""},
      {"slice pitch", [](R& r) { r.level[1].plane[1].image_slice_pitch = 0x1FFF; },
       sizes + "image size 8192, image pitch 256, image height 32, image slice pitch 8191}"},
      {"size", [](R& r) { r.level[1].plane[1].image_size = 0x8000; }, ""},
      {"size", [](R& r) { r.level[1].plane[1].image_size = 0x8001; },
       sizes + "image size 32769, image pitch 256, image height 32, image slice pitch 32768}"},
      {"the product has 32 bits",
       [](R& r) { r.level[1].plane[1].image_pitch = r.level[1].plane[1].image_height = 0x10000; },
       ""},

      {"pitch", [](R& r) { r.level[1].plane[1].image_pitch = 255; },
       pitch + "image pitch 255, image width 256, image element size 1}"},
      {"width", [](R& r) { r.level[1].plane[1].image_width = 257; },
       pitch + "image pitch 256, image width 257, image element size 1}"},
      {"width", [](R& r) { r.level[1].plane[1].image_width = 255; }, ""},
      {"element", [](R& r) { r.level[1].plane[1].image_element_size = 2; },
       pitch + "image pitch 256, image width 256, image element size 2}"},
      {"element",
       [](R& r) {
         r.level[1].plane[1].image_element_size = 2;
         r.level[1].plane[1].image_width = 128;
       },
       ""},
      {"the product has 32 bits",
       [](R& r) {
         r.level[1].plane[1].image_element_size = r.level[1].plane[1].image_width = 0x10000;
       },
       ""},

      {"no width", [](R& r) { r.level[1].plane[1].image_width = 0; },
       zero + "image width 0, image height 32, image element size 1}"},
      {"no height", [](R& r) { r.level[1].plane[1].image_height = 0; },
       zero + "image width 256, image height 0, image element size 1}"},
      {"no element", [](R& r) { r.level[1].plane[1].image_element_size = 0; },
       zero + "image width 256, image height 32, image element size 0}"},
  });
}

// A record of one level, one plane, one slice, without other buffers.
R plain(uint64_t surface) {
  R record = valid<Resource>();
  record.levels = 1;
  record.total_size = 5512 + surface;
  put_valid_level(record.level[0], 1);
  remove_lrz(record.level[0]);
  remove_flags(record.level[0]);
  record.level[0].slices = 1;
  return record;
}

TEST(ValidateResource, TheSurfaceSizeHas32BitsAndASign) {
  harness::Gpu gpu(harness::kUnknownChip);
  struct Row {
    uint64_t surface;
    uint64_t last_offset;  // of an image of 0x2000 bytes that is still inside
    const char* bound;
  };
  constexpr Row kRows[] = {
      {0x7FFFF000, 0x7FFFD000, "2147479552"},
      // From 2^31 on the bound is the sign-extended size.
      {0x80000000, 0xFFFFFFFF7FFFE000, "18446744071562067968"},
      {0xFFFFF000, 0xFFFFFFFFFFFFD000, "18446744073709547520"},
      // From 2^32 on the upper half is lost.
      {0x100100000, 0xFE000, "1048576"},
      {0x180000000, 0xFFFFFFFF7FFFE000, "18446744071562067968"},
      {0x7FFFFFFF00002000, 0, "8192"},
  };
  for (const Row& row : kRows) {
    R record = plain(row.surface);
    record.level[0].plane[0].image_offset = row.last_offset;
    EXPECT_EQ(verdict<Resource>(gpu, record), "") << row.surface;
    record.level[0].plane[0].image_offset = row.last_offset + 1;
    EXPECT_EQ(
        verdict<Resource>(gpu, record),
        "Metadata level image buffer exceeds surface bounds {level 0, plane 0, image offset " +
            std::to_string(row.last_offset + 1) +
            ", image slice pitch 32768, slices 1, image size 8192, surface size " + row.bound +
            "}");
  }
  // Exactly 4 GiB: a surface of 0 bytes.
  R record = plain(0x100000000);
  record.level[0].plane[0].image_offset = 0;
  EXPECT_EQ(verdict<Resource>(gpu, record),
            "Metadata level image buffer exceeds surface bounds {level 0, plane 0, image offset 0, "
            "image slice pitch 32768, slices 1, image size 8192, surface size 0}");
  // The level is compared with all 64 bits of the total.
  record = plain(0x180000000);
  record.level[0].size = record.total_size;
  EXPECT_EQ(verdict<Resource>(gpu, record), "");
  record.level[0].size = record.total_size + 1;
  EXPECT_EQ(verdict<Resource>(gpu, record),
            "Metadata level size is invalid value {level 0, size 6442456457, surface size "
            "6442456456}");
}

TEST(ValidateResource, ATotalBelowTheRecordsSizeWraps) {
  // 100 - 5512 = -5412: a multiple of 4, and as a bound next to 2^64.
  harness::Gpu gpu(harness::kUnknownChip);
  R record = plain(0);
  record.total_size = 100;
  record.alignment = 4;
  record.level[0].size = 100;
  EXPECT_EQ(verdict<Resource>(gpu, record), "");
  record.alignment = 8;
  EXPECT_EQ(verdict<Resource>(gpu, record),
            "Metadata surface size is not aligned {size 100, alignment 8}");
}

TEST(ValidateResource, OnlyTheLowHalfOfTheSurfaceSizeMustBeAligned) {
  harness::Gpu gpu(harness::kUnknownChip);
  R record = plain(0x180000000);
  record.alignment = 0x80000000;
  EXPECT_EQ(verdict<Resource>(gpu, record), "");
  record = plain(0x140000000);
  record.alignment = 0x80000000;
  EXPECT_EQ(verdict<Resource>(gpu, record),
            "Metadata surface size is not aligned {size 5368714632, alignment 2147483648}");
}

TEST(ValidateResource, TheExtraBufferIsNotChecked) {
  harness::Gpu gpu(harness::kUnknownChip);
  R record = valid<Resource>();
  record.extra_valid = 0xFFFFFFFF;
  record.extra_offset = record.extra_size = record.extra_slice_pitch = 0xFFFFFFFFFFFFFFFF;
  record.extended = 77;
  record.reserved_60 = 0xFFFFFFFF;
  EXPECT_EQ(verdict<Resource>(gpu, record), "");
}

}  // namespace
}  // namespace layout_test
