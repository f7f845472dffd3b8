// What only the validator of surface records checks: one size, the guid, and the actual sizes of
// images beside the allocated ones.
#include "tests/layout/stored_records.h"

namespace layout_test {
namespace {

using R = SurfaceMetadata;

TEST(ValidateSurface, HeadWords) {
  check_changes<SurfaceKind>({
      {"size", [](R& r) { r.size = 5299; },
       "Size of metadata is mismatched {stored size 5299, struct size 5300}"},
      {"size", [](R& r) { r.size = 5301; },
       "Size of metadata is mismatched {stored size 5301, struct size 5300}"},
      {"size", [](R& r) { r.size = 0xFFFFFFFF; },
       "Size of metadata is mismatched {stored size 4294967295, struct size 5300}"},
      {"guid", [](R& r) { r.guid = 0; }, "Metadata guid has invalid value 0"},
      {"guid", [](R& r) { r.guid = 1; }, ""},
      {"guid", [](R& r) { r.guid = 0x100000000; }, ""},
      {"not read", [](R& r) { r.unread_28 = 0xFFFFFFFF; }, ""},
      {"not read", [](R& r) { std::memset(r.level[0].unread_320, 0xFF, 28); }, ""},
  });
}

TEST(ValidateSurface, OfTheDriverTheFirstWordMustAgree) {
  harness::Gpu gpu(harness::kUnknownChip);
  struct Row {
    DriverWords words;
    const char* stored;  // null: accepted
  };
  constexpr Row kRows[] = {
      {.words = {.driver_version = 2}, .stored = nullptr},
      // No version selects another size.
      {.words = {.driver_version = 0, .layout_version = 9, .unused = 0xFFFFFFFF},
       .stored = nullptr},
      {.words = {.signature = 5}, .stored = "05000000-0100-0000-0300-000000000000"},
      {.words = {.signature = 0}, .stored = "00000000-0100-0000-0300-000000000000"},
      {.words = {.signature = 0x01000004}, .stored = "04000001-0100-0000-0300-000000000000"},
  };
  for (const Row& row : kRows) {
    R record = valid<SurfaceKind>();
    put_words(record.driver_uuid, row.words);
    const std::string expected =
        row.stored == nullptr ? ""
                              : std::string("Metadata driver version mismatch {store uuid ") +
                                    row.stored + ", struct uuid " + kDriverText + "}";
    EXPECT_EQ(verdict<SurfaceKind>(gpu, record), expected);
  }
}

TEST(ValidateSurface, ActualAndAllocatedImageSizes) {
  const std::string sizes = "Metadata level image size mismatch {level 1, plane 1, ";
  const std::string pitch = "Metadata level image pitch mismatch {level 1, plane 1, ";
  const std::string zero = "Metadata level image invalid dimensions {level 1, plane 1, ";
  check_changes_of_both<SurfaceKind>({
      {"size", [](R& r) { r.level[1].plane[1].image_size = 0x1FFF; },
       sizes + "image size 8191, image pitch 256, actual height 32, image slice pitch 32768}"},
      {"height", [](R& r) { r.level[1].plane[1].actual_height = 33; },
       sizes + "image size 8192, image pitch 256, actual height 33, image slice pitch 32768}"},
      {"height", [](R& r) { r.level[1].plane[1].actual_height = 31; }, ""},
      {"pitch", [](R& r) { r.level[1].plane[1].image_pitch = 257; },
       sizes + "image size 8192, image pitch 257, actual height 32, image slice pitch 32768}"},
      {"slice pitch", [](R& r) { r.level[1].plane[1].image_slice_pitch = 0x1FFF; },
       sizes + "image size 8192, image pitch 256, actual height 32, image slice pitch 8191}"},
      {"size", [](R& r) { r.level[1].plane[1].image_size = 0x8001; },
       sizes + "image size 32769, image pitch 256, actual height 32, image slice pitch 32768}"},
      {"the product has 32 bits",
       [](R& r) { r.level[1].plane[1].image_pitch = r.level[1].plane[1].actual_height = 0x10000; },
       ""},

      {"pitch", [](R& r) { r.level[1].plane[1].image_pitch = 255; },
       pitch + "image pitch 255, actual width 256, image element size 1}"},
      {"width", [](R& r) { r.level[1].plane[1].actual_width = 257; },
       pitch + "image pitch 256, actual width 257, image element size 1}"},
      {"width", [](R& r) { r.level[1].plane[1].actual_width = 255; }, ""},
      {"element", [](R& r) { r.level[1].plane[1].image_element_size = 2; },
       pitch + "image pitch 256, actual width 256, image element size 2}"},
      {"the product has 32 bits",
       [](R& r) {
         r.level[1].plane[1].image_element_size = r.level[1].plane[1].actual_width = 0x10000;
       },
       ""},

      // The allocated size is compared with nothing but 0, not even with the actual one.
      {"allocated", [](R& r) { r.level[1].plane[1].image_width = 0xFFFFFFFF; }, ""},
      {"allocated", [](R& r) { r.level[1].plane[1].image_width = 1; }, ""},
      {"allocated", [](R& r) { r.level[1].plane[1].image_height = 0xFFFFFFFF; }, ""},
      {"allocated", [](R& r) { r.level[1].plane[1].image_height = 1; }, ""},

      {"no width", [](R& r) { r.level[1].plane[1].image_width = 0; },
       zero + "image width 0, image height 40, actual width 256, actual height 32, image element "
              "size 1}"},
      {"no height", [](R& r) { r.level[1].plane[1].image_height = 0; },
       zero + "image width 200, image height 0, actual width 256, actual height 32, image element "
              "size 1}"},
      {"no actual width", [](R& r) { r.level[1].plane[1].actual_width = 0; },
       zero + "image width 200, image height 40, actual width 0, actual height 32, image element "
              "size 1}"},
      {"no actual height", [](R& r) { r.level[1].plane[1].actual_height = 0; },
       zero + "image width 200, image height 40, actual width 256, actual height 0, image element "
              "size 1}"},
      {"no element", [](R& r) { r.level[1].plane[1].image_element_size = 0; },
       zero + "image width 200, image height 40, actual width 256, actual height 32, image element "
              "size 0}"},
  });
}

TEST(ValidateSurface, TheSurfaceSizeHas64Bits) {
  harness::Gpu gpu(harness::kUnknownChip);
  for (const uint64_t surface :
       {uint64_t{0x7FFFF000}, uint64_t{0x80000000}, uint64_t{0xFFFFF000}, uint64_t{0x100000000},
        uint64_t{0x180000000}, uint64_t{0x7FFFFFFFFFFFF000}, uint64_t{0xFFFFFFFFFFFFE000}}) {
    R record = plain<SurfaceKind>(surface);
    record.level[0].plane[0].image_offset = surface - 0x2000;
    EXPECT_EQ(verdict<SurfaceKind>(gpu, record), "") << surface;
    record.level[0].plane[0].image_offset = surface - 0x1FFF;
    EXPECT_EQ(
        verdict<SurfaceKind>(gpu, record),
        "Metadata level image buffer exceeds surface bounds {level 0, plane 0, image offset " +
            std::to_string(surface - 0x1FFF) +
            ", image slice pitch 32768, slices 1, image size 8192, surface size " +
            std::to_string(surface) + "}");
  }
  // And all of them must be aligned.
  R record = plain<SurfaceKind>(0x140000000);
  record.alignment = 0x40000000;
  EXPECT_EQ(verdict<SurfaceKind>(gpu, record), "");
  record.alignment = 0x80000000;
  EXPECT_EQ(verdict<SurfaceKind>(gpu, record),
            "Metadata surface size is not aligned {size 5368714420, alignment 2147483648}");
}

TEST(ValidateSurface, ATotalBelowTheRecordsSizeWraps) {
  // 100 - 5300 = -5200: a multiple of 16, and as a bound next to 2^64.
  harness::Gpu gpu(harness::kUnknownChip);
  R record = plain<SurfaceKind>(0);
  record.total_size = 100;
  record.alignment = 16;
  record.level[0].size = 100;
  EXPECT_EQ(verdict<SurfaceKind>(gpu, record), "");
  record.alignment = 32;
  EXPECT_EQ(verdict<SurfaceKind>(gpu, record),
            "Metadata surface size is not aligned {size 100, alignment 32}");
}

}  // namespace
}  // namespace layout_test
