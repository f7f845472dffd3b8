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
  constexpr uint32_t kBytesOfVersion[] = {0, 5472, 5504, 5512};
  struct Row {
    uint32_t stored;     // the record's version
    uint32_t own;        // the caller's
    uint32_t counts_as;  // whose bytes the record must have; 0: it is refused
    std::vector<uint32_t> sizes;
  };
  const Row rows[] = {
      {.stored = 3,
       .own = 3,
       .counts_as = 3,
       .sizes = {5512, 5511, 5513, 5504, 5472, 0, 0xFFFFFFFF}},
      {.stored = 1, .own = 3, .counts_as = 1, .sizes = {5472, 5471, 5504, 5512}},
      {.stored = 2, .own = 3, .counts_as = 2, .sizes = {5504, 5512, 5472}},
      {.stored = 4, .own = 3, .counts_as = 0, .sizes = {5512}},
      {.stored = 0, .own = 3, .counts_as = 0, .sizes = {5472}},
      // Equal versions count as the current one, whatever they are.
      {.stored = 4, .own = 4, .counts_as = 3, .sizes = {5512, 5520}},
      {.stored = 0, .own = 0, .counts_as = 3, .sizes = {5512}},
      {.stored = 1, .own = 1, .counts_as = 3, .sizes = {5512, 5472}},
      {.stored = 2, .own = 2, .counts_as = 3, .sizes = {5504}},
      // Others go by the record's version.
      {.stored = 3, .own = 4, .counts_as = 3, .sizes = {5512, 5504}},
      {.stored = 3, .own = 1, .counts_as = 3, .sizes = {5512}},
      {.stored = 1, .own = 4, .counts_as = 1, .sizes = {5472}},
      {.stored = 2, .own = 1, .counts_as = 2, .sizes = {5504}},
      {.stored = 1, .own = 2, .counts_as = 1, .sizes = {5512}},
      {.stored = 5, .own = 4, .counts_as = 0, .sizes = {5512}},
  };
  harness::Gpu gpu(harness::kUnknownChip);
  for (const Row& row : rows) {
    const uint32_t expected_size = kBytesOfVersion[row.counts_as];
    for (const uint32_t size : row.sizes) {
      R record = valid<ResourceKind>();
      put_words(record.driver_uuid, DriverWords{.layout_version = row.stored});
      record.size = size;
      record.total_size = expected_size + kSurfaceBytes;
      Uuids own = kUuids;
      put_words(own.driver, DriverWords{.layout_version = row.own});
      std::string expected;
      if (row.counts_as == 0) {
        expected = "Metadata memory layout version mismatch {store uuid " +
                   driver_text(row.stored) + ", struct uuid " + driver_text(row.own) + "}";
      } else if (size != expected_size) {
        expected = "Size of metadata is mismatched {stored size " + std::to_string(size) +
                   ", struct size: " + std::to_string(expected_size) +
                   ", version: " + std::to_string(row.counts_as) + " }";
      }
      // No version is read beyond its own end.
      const std::size_t readable = row.counts_as == 0 ? 5472 : expected_size;
      EXPECT_EQ(verdict<ResourceKind>(gpu, record, readable, own), expected)
          << row.stored << " for " << row.own << ", " << size;
    }
  }
}

TEST(ValidateResource, NothingIsReadBehindTheLastLevel) {
  harness::Gpu gpu(harness::kUnknownChip);
  for (const uint32_t tiled : {0U, 1U}) {
    R record = valid<ResourceKind>();
    put_words(record.driver_uuid, DriverWords{.layout_version = 1});
    record.size = 5472;  // the first version ends with its fifteenth level
    record.total_size = 5472 + kSurfaceBytes;
    record.levels = 15;
    for (LevelLayout& level : record.level) {
      put_valid_level<ResourceKind>(level, 3);
      level.tiled = tiled;
      remove_lrz(level);
      if (tiled == 0) remove_flags(level);
    }
    EXPECT_EQ(verdict<ResourceKind>(gpu, record, 5472), "") << tiled;
  }
}

TEST(ValidateResource, TheSurfaceSizeIsCountedFromTheVersionsOwnSize) {
  struct Row {
    uint32_t version;
    uint32_t size;
    uint64_t total_size;
    const char* text;
  };
  constexpr Row kRows[] = {
      {.version = 1, .size = 5472, .total_size = 5472 + kSurfaceBytes, .text = ""},
      {.version = 1,
       .size = 5472,
       .total_size = 5512 + kSurfaceBytes,
       .text = "Metadata surface size is not aligned {size 1054088, alignment 4096}"},
      {.version = 2, .size = 5504, .total_size = 5504 + kSurfaceBytes, .text = ""},
      {.version = 2,
       .size = 5504,
       .total_size = 5472 + kSurfaceBytes,
       .text = "Metadata surface size is not aligned {size 1054048, alignment 4096}"},
  };
  harness::Gpu gpu(harness::kUnknownChip);
  for (const Row& row : kRows) {
    R record = valid<ResourceKind>();
    put_words(record.driver_uuid, DriverWords{.layout_version = row.version});
    record.size = row.size;
    record.total_size = row.total_size;
    EXPECT_EQ(verdict<ResourceKind>(gpu, record, row.size), row.text);
  }
}

TEST(ValidateResource, OfTheDriverTheSecondWordMustAgree) {
  harness::Gpu gpu(harness::kUnknownChip);
  struct Row {
    DriverWords words;
    const char* stored;  // null: accepted
  };
  constexpr Row kRows[] = {
      {.words = {.signature = 5}, .stored = nullptr},
      {.words = {.signature = 0, .unused = 0xFFFFFFFF}, .stored = nullptr},
      {.words = {.driver_version = 0}, .stored = "04000000-0000-0000-0300-000000000000"},
      {.words = {.driver_version = 2}, .stored = "04000000-0200-0000-0300-000000000000"},
      {.words = {.driver_version = 0x01000001}, .stored = "04000000-0100-0001-0300-000000000000"},
      {.words = {.driver_version = 2, .layout_version = 9, .unused = 7},
       .stored = "04000000-0200-0000-0900-000007000000"},
  };
  for (const Row& row : kRows) {
    R record = valid<ResourceKind>();
    put_words(record.driver_uuid, row.words);
    const std::string expected =
        row.stored == nullptr ? ""
                              : std::string("Metadata driver version mismatch {store uuid ") +
                                    row.stored + ", struct uuid " + kDriverText + "}";
    EXPECT_EQ(verdict<ResourceKind>(gpu, record), expected);
  }
}

TEST(ValidateResource, ImageSizes) {
  const std::string sizes = "Metadata level image size mismatch {level 1, plane 1, ";
  const std::string pitch = "Metadata level image pitch mismatch {level 1, plane 1, ";
  const std::string zero = "Metadata level image invalid dimensions {level 1, plane 1, ";
  check_changes_of_both<ResourceKind>({
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

TEST(ValidateResource, TheSurfaceSizeHas32BitsAndASign) {
  harness::Gpu gpu(harness::kUnknownChip);
  struct Row {
    uint64_t surface_bytes;
    uint64_t last_offset;  // of an image of 0x2000 bytes that is still inside
    const char* bound;
  };
  constexpr Row kRows[] = {
      // 2^31 - 4096, of which the image takes the last 0x2000 bytes.
      {.surface_bytes = 0x7FFFF000, .last_offset = 0x7FFFD000, .bound = "2147479552"},
      // From 2^31 on the bound is the sign-extended size: 2^64 - 2^31,
      {.surface_bytes = 0x80000000,
       .last_offset = 0xFFFFFFFF7FFFE000,
       .bound = "18446744071562067968"},
      // 2^64 - 4096.
      {.surface_bytes = 0xFFFFF000,
       .last_offset = 0xFFFFFFFFFFFFD000,
       .bound = "18446744073709547520"},
      // From 2^32 on the upper half is lost: 2^20, 2^31 with its sign, and 0x2000 are left.
      {.surface_bytes = 0x100100000, .last_offset = 0xFE000, .bound = "1048576"},
      {.surface_bytes = 0x180000000,
       .last_offset = 0xFFFFFFFF7FFFE000,
       .bound = "18446744071562067968"},
      {.surface_bytes = 0x7FFFFFFF00002000, .last_offset = 0, .bound = "8192"},
  };
  for (const Row& row : kRows) {
    R record = plain<ResourceKind>(row.surface_bytes);
    record.level[0].plane[0].image_offset = row.last_offset;
    EXPECT_EQ(verdict<ResourceKind>(gpu, record), "") << row.surface_bytes;
    record.level[0].plane[0].image_offset = row.last_offset + 1;
    EXPECT_EQ(
        verdict<ResourceKind>(gpu, record),
        "Metadata level image buffer exceeds surface bounds {level 0, plane 0, image offset " +
            std::to_string(row.last_offset + 1) +
            ", image slice pitch 32768, slices 1, image size 8192, surface size " + row.bound +
            "}");
  }
  // Exactly 4 GiB: a surface of 0 bytes.
  R record = plain<ResourceKind>(0x100000000);
  record.level[0].plane[0].image_offset = 0;
  EXPECT_EQ(verdict<ResourceKind>(gpu, record),
            "Metadata level image buffer exceeds surface bounds {level 0, plane 0, image offset 0, "
            "image slice pitch 32768, slices 1, image size 8192, surface size 0}");
  // The level is compared with all 64 bits of the total.
  record = plain<ResourceKind>(0x180000000);
  record.level[0].size = record.total_size;
  EXPECT_EQ(verdict<ResourceKind>(gpu, record), "");
  record.level[0].size = record.total_size + 1;
  EXPECT_EQ(verdict<ResourceKind>(gpu, record),
            "Metadata level size is invalid value {level 0, size 6442456457, surface size "
            "6442456456}");
}

TEST(ValidateResource, ATotalBelowTheRecordsSizeWraps) {
  // 100 - 5512 = -5412: a multiple of 4, and as a bound next to 2^64.
  harness::Gpu gpu(harness::kUnknownChip);
  R record = plain<ResourceKind>(0);
  record.total_size = 100;
  record.alignment = 4;
  record.level[0].size = 100;
  EXPECT_EQ(verdict<ResourceKind>(gpu, record), "");
  record.alignment = 8;
  EXPECT_EQ(verdict<ResourceKind>(gpu, record),
            "Metadata surface size is not aligned {size 100, alignment 8}");
}

TEST(ValidateResource, OnlyTheLowHalfOfTheSurfaceSizeMustBeAligned) {
  harness::Gpu gpu(harness::kUnknownChip);
  R record = plain<ResourceKind>(0x180000000);
  record.alignment = 0x80000000;
  EXPECT_EQ(verdict<ResourceKind>(gpu, record), "");
  record = plain<ResourceKind>(0x140000000);
  record.alignment = 0x80000000;
  EXPECT_EQ(verdict<ResourceKind>(gpu, record),
            "Metadata surface size is not aligned {size 5368714632, alignment 2147483648}");
}

TEST(ValidateResource, TheExtraBufferIsNotChecked) {
  harness::Gpu gpu(harness::kUnknownChip);
  R record = valid<ResourceKind>();
  record.extra_valid = 0xFFFFFFFF;
  record.extra_offset = record.extra_size = record.extra_slice_pitch = 0xFFFFFFFFFFFFFFFF;
  record.extended = 77;
  record.reserved_60 = 0xFFFFFFFF;
  EXPECT_EQ(verdict<ResourceKind>(gpu, record), "");
}

}  // namespace
}  // namespace layout_test
