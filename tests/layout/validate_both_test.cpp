// The checks that both validators make, on both kinds of record. Messages print in decimal what the
// changes store in hexadecimal.
#include "tests/layout/requests.h"
#include "tests/layout/stored_records.h"

namespace layout_test {
namespace {

struct KindName {
  template <typename Kind>
  static std::string GetName(int) {
    return std::is_same_v<Kind, ResourceKind> ? "Resource" : "Surface";
  }
};

template <typename Kind>
class Validators : public testing::Test {};
using Kinds = testing::Types<ResourceKind, SurfaceKind>;
TYPED_TEST_SUITE(Validators, Kinds, KindName);

#define USE_KIND          \
  using Kind = TypeParam; \
  using R = typename Kind::Record

TYPED_TEST(Validators, AcceptAValidRecord) {
  using Kind = TypeParam;
  harness::Gpu gpu(harness::kUnknownChip);
  EXPECT_EQ(verdict<Kind>(gpu, valid<Kind>()), "");
  EXPECT_TRUE(gpu.take_calls().empty());
}

// What fuzzers, digest, reference comparison and benchmarks change is valid to begin with. Of four
// slices, the buffers reach furthest.
TYPED_TEST(Validators, AcceptTheUsualRecord) {
  using Kind = TypeParam;
  harness::Gpu gpu(harness::kUnknownChip);
  for (const uint32_t levels : {1u, 2u, 15u}) {
    for (const uint32_t first_linear_level : {0u, 1u, 15u}) {
      for (const bool buffers : {false, true}) {
        const records::Shape shape = {.levels = levels,
                                      .first_linear_level = first_linear_level,
                                      .slices = 4,
                                      .flags = buffers,
                                      .lrz = buffers,
                                      .surface_bytes = 0x10000,
                                      .uuids = kUuids};
        typename Kind::Record record = records::valid_record<Kind>(shape);
        EXPECT_EQ(verdict<Kind>(gpu, record), "")
            << levels << " levels, linear from " << first_linear_level << ", " << buffers;
        for (auto& level : record.level)
          level.planes = 1;  // a count may be less than what is there
        EXPECT_EQ(verdict<Kind>(gpu, record), "") << "of one plane";
      }
    }
  }
}

TYPED_TEST(Validators, HeadWords) {
  USE_KIND;
  const std::string total = Kind::kTotal;
  const auto total_of = [](uint64_t surface) { return std::to_string(Kind::kBytes + surface); };
  check_changes_of_both<Kind>({
      {"signature", [](R& r) { r.signature = 0; }, "Metadata has bad signature 0"},
      {"signature", [](R& r) { r.signature = 0xFFFFFFFF; },
       "Metadata has bad signature 4294967295"},
      {"signature", [](R& r) { r.signature ^= 1; },
       "Metadata has bad signature " + std::to_string(Kind::kSignature ^ 1)},

      {"alignment", [](R& r) { r.alignment = 0; }, "Metadata alignment is not pot 0"},
      {"alignment", [](R& r) { r.alignment = 3; }, "Metadata alignment is not pot 3"},
      {"alignment", [](R& r) { r.alignment = 4095; }, "Metadata alignment is not pot 4095"},
      {"alignment", [](R& r) { r.alignment = 0xFFFFFFFF; },
       "Metadata alignment is not pot 4294967295"},
      {"alignment", [](R& r) { r.alignment = 1; }, ""},
      {"alignment", [](R& r) { r.alignment = 0x100000; }, ""},
      {"alignment", [](R& r) { r.alignment = 0x200000; },
       "Metadata surface size is not aligned {size " + total + ", alignment 2097152}"},
      {"alignment", [](R& r) { r.alignment = 0x80000000; },
       "Metadata surface size is not aligned {size " + total + ", alignment 2147483648}"},

      {"total", [](R& r) { r.total_size = 0; },
       "Metadata surface size is not aligned {size 0, alignment 4096}"},
      {"total",
       [](R& r) {
         r.total_size = 0;
         r.alignment = 1;
       },
       "Metadata surface size is not aligned {size 0, alignment 1}"},
      {"total", [](R& r) { r.total_size += 1; },
       "Metadata surface size is not aligned {size " + total_of(kSurfaceBytes + 1) +
           ", alignment 4096}"},
      {"total", [](R& r) { r.total_size -= 1; },
       "Metadata surface size is not aligned {size " + total_of(kSurfaceBytes - 1) +
           ", alignment 4096}"},
      {"total", [](R& r) { r.total_size = kSurfaceBytes; },
       "Metadata surface size is not aligned {size 1048576, alignment 4096}"},
      {"total", [](R& r) { r.total_size += 4096; }, ""},
      {"total", [](R& r) { r.total_size += 0x500000000 + 2048; },
       "Metadata surface size is not aligned {size " + total_of(kSurfaceBytes + 0x500000800) +
           ", alignment 4096}"},

      {"samples", [](R& r) { r.samples = 0; }, "Metadata samples invalid count 0"},
      {"samples", [](R& r) { r.samples = 2; }, ""},
      {"samples", [](R& r) { r.samples = 3; }, "Metadata samples invalid count 3"},
      {"samples", [](R& r) { r.samples = 4; }, ""},
      {"samples", [](R& r) { r.samples = 5; }, "Metadata samples invalid count 5"},
      {"samples", [](R& r) { r.samples = 6; }, "Metadata samples invalid count 6"},
      {"samples", [](R& r) { r.samples = 7; }, "Metadata samples invalid count 7"},
      {"samples", [](R& r) { r.samples = 8; }, ""},
      {"samples", [](R& r) { r.samples = 9; }, "Metadata samples invalid count 9"},
      {"samples", [](R& r) { r.samples = 16; }, "Metadata samples invalid count 16"},
      {"samples", [](R& r) { r.samples = 0x80000001; },
       "Metadata samples invalid count 2147483649"},

      {"levels", [](R& r) { r.levels = 0; }, "Metadata levels is invalid value 0"},
      {"levels", [](R& r) { r.levels = 16; }, "Metadata levels is invalid value 16"},
      {"levels", [](R& r) { r.levels = 0xFFFFFFFF; },
       "Metadata levels is invalid value 4294967295"},
      {"levels",
       [](R& r) {
         r.levels = 1;  // the second is not looked at
         r.level[1].size = 0;
       },
       ""},

      {"format", [](R& r) { r.format = 0; }, ""},    // the record of unused ids has one byte
      {"format", [](R& r) { r.format = 119; }, ""},  // too
      {"format", [](R& r) { r.format = 721; }, ""},
      {"format", [](R& r) { r.format = 722; }, "Metadata format is not recognized 722"},
      {"format", [](R& r) { r.format = 0xFFFFFFFF; },
       "Metadata format is not recognized 4294967295"},
      {"format", [](R& r) { r.format = kFourCC; }, "Metadata format is not recognized 927094871"},
  });
}

TYPED_TEST(Validators, FifteenLevels) {
  USE_KIND;
  harness::Gpu gpu(harness::kUnknownChip);
  R record = valid<Kind>();
  record.levels = 15;
  for (auto& level : record.level) put_valid_level<Kind>(level, 3);
  EXPECT_EQ(verdict<Kind>(gpu, record), "");
  record.level[14].plane[2].flag_pitch = 0;
  EXPECT_EQ(verdict<Kind>(gpu, record),
            "Metadata level flagbuffer pitch mismatch {level 14, plane 2, flag pitch 0, flag slice "
            "pitch 32768}");
}

TYPED_TEST(Validators, LevelWords) {
  USE_KIND;
  const std::string total = Kind::kTotal;
  const std::string more = std::to_string(Kind::kBytes + kSurfaceBytes + 1);
  check_changes_of_both<Kind>({
      {"size", [](R& r) { r.level[1].size = 0; },
       "Metadata level size is invalid value {level 1, size 0, surface size " + total + "}"},
      {"size", [](R& r) { r.level[0].size = 0; },
       "Metadata level size is invalid value {level 0, size 0, surface size " + total + "}"},
      {"size", [](R& r) { r.level[1].size = 1; }, ""},
      {"size", [](R& r) { r.level[1].size = r.total_size; }, ""},
      {"size", [](R& r) { r.level[1].size = r.total_size + 1; },
       "Metadata level size is invalid value {level 1, size " + more + ", surface size " + total +
           "}"},
      {"size", [](R& r) { r.level[1].size = 0x100000001; },
       "Metadata level size is invalid value {level 1, size 4294967297, surface size " + total +
           "}"},
      {"size", [](R& r) { r.level[1].size = 0xFFFFFFFFFFFFFFFF; },
       "Metadata level size is invalid value {level 1, size 18446744073709551615, surface size " +
           total + "}"},

      {"slices", [](R& r) { r.level[1].slices = 0; },
       "Metadata level slices is invalid value {level 1, slices 0}"},
      {"slices", [](R& r) { r.level[1].slices = 1; }, ""},
      {"slices", [](R& r) { r.level[1].slices = 2049; },
       "Metadata level slices is invalid value {level 1, slices 2049}"},
      {"slices", [](R& r) { r.level[1].slices = 0xFFFFFFFF; },
       "Metadata level slices is invalid value {level 1, slices 4294967295}"},
      {"slices",
       [](R& r) {  // 2048 of 512 bytes are 0x100000; of depth 2048 of 256 behind 0x40000
         r.level[1].lrz_size = r.level[1].lrz_slice_pitch = 256;
         r.level[1].lrz_pitch = r.level[1].lrz_width = r.level[1].lrz_height = 16;
         r.level[1].slices = 2048;
         r.level[1].planes = 1;
         auto& plane = r.level[1].plane[0];
         plane.image_offset = 0;
         plane.image_size = plane.image_slice_pitch = 512;
         plane.image_pitch = 256;
         put_checked_height(plane, 2);
         plane.flag_valid = 0;
       },
       ""},

      {"tiled", [](R& r) { r.level[1].tiled = 2; },
       "Metadata level tiled is invalid value {level 1, tiled 2}"},
      {"tiled", [](R& r) { r.level[0].tiled = 0xFFFFFFFF; },
       "Metadata level tiled is invalid value {level 0, tiled 4294967295}"},
      {"tiled",
       [](R& r) {  // with nothing else to complain of
         for (uint32_t l = 0; l < r.levels; ++l) {
           remove_lrz(r.level[l]);
           remove_flags(r.level[l]);
           r.level[l].tiled = 2;
         }
       },
       "Metadata level tiled is invalid value {level 0, tiled 2}"},

      {"planes", [](R& r) { r.level[1].planes = 0; },
       "Metadata level planes is invalid value {level 1, planes 0}"},
      {"planes", [](R& r) { r.level[1].planes = 1; }, ""},
      {"planes",
       [](R& r) {
         r.level[1].planes = 3;
         r.level[1].plane[2] = r.level[1].plane[1];
       },
       ""},
      {"planes", [](R& r) { r.level[1].planes = 4; },
       "Metadata level planes is invalid value {level 1, planes 4}"},
      {"planes", [](R& r) { r.level[1].planes = 0x80000000; },
       "Metadata level planes is invalid value {level 1, planes 2147483648}"},
  });
}

TYPED_TEST(Validators, DepthBufferWords) {
  USE_KIND;
  check_changes<Kind>({
      {"lrz valid", [](R& r) { r.level[1].lrz_valid = 2; },
       "Metadata level lrz valid bit is invalid value {level 1, lrz valid 2}"},
      {"lrz valid", [](R& r) { r.level[0].lrz_valid = 0xFFFFFFFF; },
       "Metadata level lrz valid bit is invalid value {level 0, lrz valid 4294967295}"},
      {"fc valid", [](R& r) { r.level[1].lrz_fc_valid = 2; },
       "Metadata level lrz fc valid bit is invalid value {level 1, lrz fc valid 2}"},
      {"fc valid", [](R& r) { r.level[1].lrz_fc_valid = 0x80000001; },
       "Metadata level lrz fc valid bit is invalid value {level 1, lrz fc valid 2147483649}"},
      {"lrz without fc", [](R& r) { r.level[1].lrz_fc_valid = 0; },
       "Metadata level lrz valid bits mismatch {level 1, lrz valid 1, lrz fc valid 0}"},
      {"fc without lrz", [](R& r) { r.level[1].lrz_valid = 0; },
       "Metadata level lrz valid bits mismatch {level 1, lrz valid 0, lrz fc valid 1}"},
      {"fc alone, out of bounds",
       [](R& r) {
         r.levels = 1;
         r.level[0].lrz_valid = 0;
         r.level[0].lrz_fc_offset = kSurfaceBytes;
       },
       "Metadata level lrz valid bits mismatch {level 0, lrz valid 0, lrz fc valid 1}"},
  });
}

TYPED_TEST(Validators, TiledAndLinearLevels) {
  USE_KIND;
  // The tiled bits of the levels, and whether lower levels may be linear.
  const auto levels = [](std::vector<uint32_t> tiled, uint32_t fallback) {
    return [=](R& r) {
      r.levels = static_cast<uint32_t>(tiled.size());
      r.linear_fallback = fallback;
      for (std::size_t l = 0; l < tiled.size(); ++l) {
        put_valid_level<Kind>(r.level[l], 1);
        r.level[l].tiled = tiled[l];
        if (tiled[l] == 0) remove_flags(r.level[l]);
      }
    };
  };
  const std::string not_enabled =
      "Metadata level has linear fallback but didnt enable bit in struct ";
  const std::string tiled_again = "Metadata level tiled bit transitioned from untiled to tiled ";
  check_changes<Kind>({
      {"tiled", levels({1, 1, 1}, 0), ""},
      {"tiled, allowed", levels({1, 1, 1}, 1), ""},
      {"linear", levels({0, 0, 0}, 0), ""},
      {"linear, allowed", levels({0, 0, 0}, 1), ""},
      {"fallback", levels({1, 1, 0}, 0), not_enabled + "2"},
      {"fallback", levels({1, 0, 0}, 0), not_enabled + "1"},
      {"fallback, allowed", levels({1, 1, 0}, 1), ""},
      {"fallback, allowed", levels({1, 0, 0}, 1), ""},
      {"fallback, allowed by any word but 0", levels({1, 0}, 0x80000000), ""},
      {"linear, tiled", levels({0, 1}, 0), tiled_again + "1"},
      {"linear, tiled", levels({0, 1}, 1), tiled_again + "1"},
      {"tiled, linear, tiled", levels({1, 0, 1}, 1), tiled_again + "2"},
  });
}

TYPED_TEST(Validators, DepthBuffersOfAllLevelsOrNone) {
  USE_KIND;
  const std::string some = "Metadata lrz buffer is present for some levels but not for others ";
  check_changes<Kind>({
      {"none",
       [](R& r) {  // the words of absent buffers may hold anything
         for (auto& level : r.level) {
           level.lrz_offset = level.lrz_size = level.lrz_slice_pitch = 0xFFFFFFFFFFFFFFFF;
           level.lrz_pitch = level.lrz_width = level.lrz_height = 0;
           level.lrz_fc_offset = level.lrz_fc_size = 0xFFFFFFFFFFFFFFFF;
           remove_lrz(level);
         }
       },
       ""},
      {"the first alone", [](R& r) { remove_lrz(r.level[1]); }, some + "1"},
      {"the second alone", [](R& r) { remove_lrz(r.level[0]); }, some + "1"},
      {"the last missing",
       [](R& r) {
         r.levels = 4;
         for (auto& level : r.level) put_valid_level<Kind>(level, 1);
         remove_lrz(r.level[3]);
       },
       some + "3"},
  });
}

TYPED_TEST(Validators, DepthBufferBoundsAndSizes) {
  USE_KIND;
  const std::string bounds = "Metadata level lrz buffer exceeds surface bounds {level 1, ";
  const std::string sizes = "Metadata level lrz size mismatch {level 1, ";
  const std::string fc = "Metadata level lrz fc buffer exceeds surface bounds {level 1, ";
  check_changes<Kind>({
      // Offset + 0x1000 + 0x1000 against 0x100000.
      {"offset", [](R& r) { r.level[1].lrz_offset = 0xFE000; }, ""},
      {"offset", [](R& r) { r.level[1].lrz_offset = 0xFE001; },
       bounds + "lrz offset 1040385, lrz slice pitch 4096, slices 2, lrz size 4096, surface size "
                "1048576}"},
      {"slice pitch", [](R& r) { r.level[1].lrz_slice_pitch = 0xBF000; }, ""},
      {"slice pitch", [](R& r) { r.level[1].lrz_slice_pitch = 0xBF001; },
       bounds + "lrz offset 262144, lrz slice pitch 782337, slices 2, lrz size 4096, surface size "
                "1048576}"},
      {"size",
       [](R& r) {
         r.level[1].lrz_slice_pitch = 0x60000;
         r.level[1].lrz_size = 0x60000;
       },
       ""},
      {"size",
       [](R& r) {
         r.level[1].lrz_slice_pitch = 0x60000;
         r.level[1].lrz_size = 0x60001;
       },
       bounds + "lrz offset 262144, lrz slice pitch 393216, slices 2, lrz size 393217, surface "
                "size 1048576}"},
      // Sums and products that 64 bits do not hold.
      {"offset + wraps", [](R& r) { r.level[1].lrz_offset = 0xFFFFFFFFFFFFE000; },
       bounds + "lrz offset 18446744073709543424, lrz slice pitch 4096, slices 2, lrz size 4096, "
                "surface size 1048576}"},
      {"size wraps",
       [](R& r) {
         r.level[1].lrz_offset = 0x1000;
         r.level[1].lrz_size = 0xFFFFFFFFFFFFF000;
       },
       bounds + "lrz offset 4096, lrz slice pitch 4096, slices 2, lrz size 18446744073709547520, "
                "surface size 1048576}"},
      {"slice pitch wraps",
       [](R& r) {
         for (auto& level : r.level) level.slices = 3;
         r.level[1].lrz_slice_pitch = 0x8000000000000000;
       },
       bounds + "lrz offset 262144, lrz slice pitch 9223372036854775808, slices 3, lrz size 4096, "
                "surface size 1048576}"},

      {"size", [](R& r) { r.level[1].lrz_size = 4095; },
       sizes + "lrz size 4095, lrz pitch 64, lrz height 64, lrz slice pitch 4096}"},
      {"height", [](R& r) { r.level[1].lrz_height = 65; },
       sizes + "lrz size 4096, lrz pitch 64, lrz height 65, lrz slice pitch 4096}"},
      {"pitch", [](R& r) { r.level[1].lrz_pitch = 65; },
       sizes + "lrz size 4096, lrz pitch 65, lrz height 64, lrz slice pitch 4096}"},
      {"height", [](R& r) { r.level[1].lrz_height = 63; }, ""},
      {"size", [](R& r) { r.level[1].lrz_size = 4097; },
       sizes + "lrz size 4097, lrz pitch 64, lrz height 64, lrz slice pitch 4096}"},
      {"slice pitch", [](R& r) { r.level[1].lrz_slice_pitch = 4095; },
       sizes + "lrz size 4096, lrz pitch 64, lrz height 64, lrz slice pitch 4095}"},
      {"the product has 32 bits",
       [](R& r) { r.level[1].lrz_pitch = r.level[1].lrz_height = 0x10000; }, ""},
      {"the product has 32 bits",
       [](R& r) {
         r.level[1].lrz_pitch = 0x10001;  // 2^32 + 0x10000
         r.level[1].lrz_height = 0x10000;
       },
       sizes + "lrz size 4096, lrz pitch 65537, lrz height 65536, lrz slice pitch 4096}"},

      {"width", [](R& r) { r.level[1].lrz_width = 65; },
       "Metadata level lrz pitch mismatch {level 1, lrz pitch 64, lrz width 65}"},
      {"width", [](R& r) { r.level[1].lrz_width = 63; }, ""},
      {"no width", [](R& r) { r.level[1].lrz_width = 0; },
       "Metadata level lrz dimensions are invalid {level 1, lrz width 0, lrz height 64}"},
      {"no height", [](R& r) { r.level[1].lrz_height = 0; },
       "Metadata level lrz dimensions are invalid {level 1, lrz width 64, lrz height 0}"},
      {"no pitch",
       [](R& r) {
         r.level[1].lrz_pitch = 0;
         r.level[1].lrz_width = 0;
       },
       "Metadata level lrz dimensions are invalid {level 1, lrz width 0, lrz height 64}"},

      // One fast-clear buffer for all slices.
      {"fc offset", [](R& r) { r.level[1].lrz_fc_offset = 0xFF000; }, ""},
      {"fc offset", [](R& r) { r.level[1].lrz_fc_offset = 0xFF001; },
       fc + "lrz fc offset 1044481, lrz fc size 4096, surface size 1048576}"},
      {"fc size", [](R& r) { r.level[1].lrz_fc_size = 0xB0000; }, ""},
      {"fc size", [](R& r) { r.level[1].lrz_fc_size = 0xB0001; },
       fc + "lrz fc offset 327680, lrz fc size 720897, surface size 1048576}"},
      {"fc size", [](R& r) { r.level[1].lrz_fc_size = 0; }, ""},
      {"fc wraps", [](R& r) { r.level[1].lrz_fc_offset = 0xFFFFFFFFFFFFF000; },
       fc + "lrz fc offset 18446744073709547520, lrz fc size 4096, surface size 1048576}"},
  });
}

TYPED_TEST(Validators, ImageBounds) {
  USE_KIND;
  const std::string bounds =
      "Metadata level image buffer exceeds surface bounds {level 1, plane 1, ";
  check_changes_of_both<Kind>({
      // Offset + 0x8000 + 0x2000 against 0x100000.
      {"offset", [](R& r) { r.level[1].plane[1].image_offset = 0xF6000; }, ""},
      {"offset", [](R& r) { r.level[1].plane[1].image_offset = 0xF6001; },
       bounds + "image offset 1007617, image slice pitch 32768, slices 2, image size 8192, surface "
                "size 1048576}"},
      {"slice pitch", [](R& r) { r.level[1].plane[1].image_slice_pitch = 0xFD000; }, ""},
      {"slice pitch", [](R& r) { r.level[1].plane[1].image_slice_pitch = 0xFD001; },
       bounds + "image offset 4096, image slice pitch 1036289, slices 2, image size 8192, surface "
                "size 1048576}"},
      {"slices", [](R& r) { r.level[1].slices = 64; },
       "Metadata level image buffer exceeds surface bounds {level 1, plane 0, image offset 4096, "
       "image slice pitch 32768, slices 64, image size 8192, surface size 1048576}"},
      {"one slice has no pitch",
       [](R& r) {
         r.level[1].slices = 1;
         r.level[1].plane[1].image_slice_pitch = 0xFFFFFFFFFFFFFFFF;
       },
       ""},
      {"one slice",
       [](R& r) {
         r.level[1].slices = 1;
         r.level[1].plane[1].image_offset = 0xFE000;
       },
       ""},
      {"one slice",
       [](R& r) {
         r.level[1].slices = 1;
         r.level[1].plane[1].image_offset = 0xFE001;
       },
       bounds + "image offset 1040385, image slice pitch 32768, slices 1, image size 8192, surface "
                "size 1048576}"},
      {"a small surface", [](R& r) { r.total_size = Kind::kBytes; },
       "Metadata level size is invalid value {level 0, size 65536, surface size " +
           std::to_string(Kind::kBytes) + "}"},
      {"a surface of 0",
       [](R& r) {
         r.total_size = Kind::kBytes;
         for (auto& level : r.level) {
           level.size = 1;
           remove_lrz(level);
         }
       },
       "Metadata level image buffer exceeds surface bounds {level 0, plane 0, image offset 4096, "
       "image slice pitch 32768, slices 2, image size 8192, surface size 0}"},
      {"offset wraps", [](R& r) { r.level[1].plane[1].image_offset = 0xFFFFFFFFFFFF6000; },
       bounds + "image offset 18446744073709510656, image slice pitch 32768, slices 2, image size "
                "8192, surface size 1048576}"},
      {"slice pitch wraps",
       [](R& r) {
         for (auto& level : r.level) level.slices = 3;
         r.level[1].plane[1].image_slice_pitch = 0x8000000000000000;
       },
       bounds + "image offset 4096, image slice pitch 9223372036854775808, slices 3, image size "
                "8192, surface size 1048576}"},
      {"size wraps",
       [](R& r) {
         r.level[1].slices = 1;
         r.level[1].plane[1].image_size = 0xFFFFFFFFFFFFF000;
         r.level[1].plane[1].image_slice_pitch = 0xFFFFFFFFFFFFFFFF;
       },
       bounds + "image offset 4096, image slice pitch 18446744073709551615, slices 1, image size "
                "18446744073709547520, surface size 1048576}"},
      {"the first plane", [](R& r) { r.level[0].plane[0].image_offset = 0x100000; },
       "Metadata level image buffer exceeds surface bounds {level 0, plane 0, image offset "
       "1048576, image slice pitch 32768, slices 2, image size 8192, surface size 1048576}"},
  });
}

TYPED_TEST(Validators, FlagBuffers) {
  USE_KIND;
  const std::string bounds =
      "Metadata level flagbuffer buffer exceeds surface bounds {level 1, plane 1, ";
  const std::string pitch = "Metadata level flagbuffer pitch mismatch {level 1, plane 1, ";
  const std::string slice = "Metadata level flagbuffer slice pitch mismatch {level 1, plane 1, ";
  check_changes_of_both<Kind>({
      {"valid", [](R& r) { r.level[1].plane[1].flag_valid = 2; },
       "Metadata level flagbuffer valid bit invalid {level 1, plane 1, valid 2}"},
      {"valid", [](R& r) { r.level[1].plane[1].flag_valid = 0xFFFFFFFF; },
       "Metadata level flagbuffer valid bit invalid {level 1, plane 1, valid 4294967295}"},
      {"absent, whatever its words hold",
       [](R& r) {
         auto& plane = r.level[1].plane[1];
         plane.flag_valid = 0;
         plane.flag_offset = plane.flag_size = 0xFFFFFFFFFFFFFFFF;
         plane.flag_pitch = 0;
         plane.flag_slice_pitch = 0;
       },
       ""},
      {"linear",
       [](R& r) {
         r.linear_fallback = 1;
         r.level[1].tiled = 0;
       },
       "Metadata level flagbuffer enabled but tiling is disabled {level 1, plane 0}"},
      {"linear in the second plane",
       [](R& r) {
         r.linear_fallback = 1;
         r.level[1].tiled = 0;
         r.level[1].plane[0].flag_valid = 0;
       },
       "Metadata level flagbuffer enabled but tiling is disabled {level 1, plane 1}"},
      // Offset + 0x8000 + 0x1000 against 0x100000.
      {"offset", [](R& r) { r.level[1].plane[1].flag_offset = 0xF7000; }, ""},
      {"offset", [](R& r) { r.level[1].plane[1].flag_offset = 0xF7001; },
       bounds + "flag offset 1011713, flag slice pitch 32768, slices 2, flag size 4096, surface "
                "size 1048576}"},
      {"slice pitch", [](R& r) { r.level[1].plane[1].flag_slice_pitch = 0xFF000; }, ""},
      {"slice pitch", [](R& r) { r.level[1].plane[1].flag_slice_pitch = 0xFF001; },
       bounds + "flag offset 0, flag slice pitch 1044481, slices 2, flag size 4096, surface size "
                "1048576}"},
      {"one slice",
       [](R& r) {
         r.level[1].slices = 1;
         r.level[1].plane[1].flag_offset = 0xFF000;
       },
       ""},
      {"one slice",
       [](R& r) {
         r.level[1].slices = 1;
         r.level[1].plane[1].flag_offset = 0xFF001;
       },
       bounds + "flag offset 1044481, flag slice pitch 32768, slices 1, flag size 4096, surface "
                "size 1048576}"},
      {"the last plane", [](R& r) { r.level[0].plane[2].flag_offset = kSurfaceBytes; },
       "Metadata level flagbuffer buffer exceeds surface bounds {level 0, plane 2, flag offset "
       "1048576, flag slice pitch 32768, slices 2, flag size 4096, surface size 1048576}"},
      {"offset wraps", [](R& r) { r.level[1].plane[1].flag_offset = 0xFFFFFFFFFFFF7000; },
       bounds + "flag offset 18446744073709514752, flag slice pitch 32768, slices 2, flag size "
                "4096, surface size 1048576}"},
      {"slice pitch wraps",
       [](R& r) {
         for (auto& level : r.level) level.slices = 3;
         r.level[1].plane[1].flag_slice_pitch = 0x8000000000000000;
       },
       bounds + "flag offset 0, flag slice pitch 9223372036854775808, slices 3, flag size 4096, "
                "surface size 1048576}"},
      {"size wraps",
       [](R& r) {
         r.level[1].plane[1].flag_offset = 0x1000;
         r.level[1].plane[1].flag_size = 0xFFFFFFFFFFFFF000;
       },
       bounds + "flag offset 4096, flag slice pitch 32768, slices 2, flag size "
                "18446744073709547520, surface size 1048576}"},
      {"no pitch", [](R& r) { r.level[1].plane[1].flag_pitch = 0; },
       pitch + "flag pitch 0, flag slice pitch 32768}"},
      {"pitch", [](R& r) { r.level[1].plane[1].flag_pitch = 1; }, ""},
      {"pitch", [](R& r) { r.level[1].plane[1].flag_pitch = 0x8000; }, ""},
      {"pitch", [](R& r) { r.level[1].plane[1].flag_pitch = 0x8001; },
       pitch + "flag pitch 32769, flag slice pitch 32768}"},
      {"slice pitch",
       [](R& r) {
         r.level[1].slices = 1;
         r.level[1].plane[1].flag_slice_pitch = 63;
       },
       pitch + "flag pitch 64, flag slice pitch 63}"},
      {"size", [](R& r) { r.level[1].plane[1].flag_size = 0x8000; }, ""},
      {"size", [](R& r) { r.level[1].plane[1].flag_size = 0x8001; },
       slice + "flag slice pitch 32768, flag size 32769}"},
      {"size", [](R& r) { r.level[1].plane[1].flag_size = 0; }, ""},
  });
}

// ---- Order ------------------------------------------------------------------------------------

// Level and plane checks in order. Of two neighbours that both fail, the first is reported; so is
// it of any two.
template <typename Kind>
std::vector<Change<Kind>> level_faults() {
  using R = typename Kind::Record;
  return {
      {"last of level 0", [](R& r) { r.level[0].plane[2].flag_size = 0x8001; },
       "Metadata level flagbuffer slice pitch mismatch {level 0"},
      {"size", [](R& r) { r.level[1].size = 0; }, "Metadata level size is invalid value {level 1"},
      {"slices", [](R& r) { r.level[1].slices = 0; }, "Metadata level slices is invalid value"},
      {"tiled", [](R& r) { r.level[1].tiled = 2; }, "Metadata level tiled is invalid value"},
      {"planes", [](R& r) { r.level[1].planes = 0; }, "Metadata level planes is invalid value"},
      {"lrz valid", [](R& r) { r.level[1].lrz_valid = 2; },
       "Metadata level lrz valid bit is invalid value"},
      {"fc valid", [](R& r) { r.level[1].lrz_fc_valid = 2; },
       "Metadata level lrz fc valid bit is invalid value"},
      {"bits", [](R& r) { r.level[1].lrz_valid = 0; }, "Metadata level lrz valid bits mismatch"},
      {"fallback", [](R& r) { r.level[1].tiled = 0; }, "Metadata level has linear fallback"},
      {"presence", [](R& r) { remove_lrz(r.level[1]); }, "Metadata lrz buffer is present"},
      {"lrz bounds", [](R& r) { r.level[1].lrz_offset = kSurfaceBytes; },
       "Metadata level lrz buffer exceeds"},
      {"lrz size", [](R& r) { r.level[1].lrz_size = 4095; }, "Metadata level lrz size mismatch"},
      {"lrz pitch", [](R& r) { r.level[1].lrz_width = 65; }, "Metadata level lrz pitch mismatch"},
      {"lrz height", [](R& r) { r.level[1].lrz_height = 0; },
       "Metadata level lrz dimensions are invalid"},
      {"fc bounds", [](R& r) { r.level[1].lrz_fc_offset = kSurfaceBytes; },
       "Metadata level lrz fc buffer exceeds"},
      {"image bounds", [](R& r) { r.level[1].plane[0].image_offset = kSurfaceBytes; },
       "Metadata level image buffer exceeds surface bounds {level 1, plane 0"},
      {"image size", [](R& r) { r.level[1].plane[0].image_size = 0x1FFF; },
       "Metadata level image size mismatch"},
      {"image pitch", [](R& r) { put_checked_width(r.level[1].plane[0], 257); },
       "Metadata level image pitch mismatch"},
      {"image height", [](R& r) { put_checked_height(r.level[1].plane[0], 0); },
       "Metadata level image invalid dimensions"},
      {"flag valid", [](R& r) { r.level[1].plane[0].flag_valid = 2; },
       "Metadata level flagbuffer valid bit invalid"},
      {"linear",
       [](R& r) {
         r.linear_fallback = 1;
         r.level[1].tiled = 0;
       },
       "Metadata level flagbuffer enabled but tiling is disabled"},
      {"flag bounds", [](R& r) { r.level[1].plane[0].flag_offset = kSurfaceBytes; },
       "Metadata level flagbuffer buffer exceeds"},
      {"flag pitch", [](R& r) { r.level[1].plane[0].flag_pitch = 0; },
       "Metadata level flagbuffer pitch mismatch"},
      {"flag slice pitch", [](R& r) { r.level[1].plane[0].flag_size = 0x8001; },
       "Metadata level flagbuffer slice pitch mismatch {level 1, plane 0"},
      {"plane 1", [](R& r) { r.level[1].plane[1].image_offset = kSurfaceBytes; },
       "Metadata level image buffer exceeds surface bounds {level 1, plane 1"},
  };
}

template <typename Kind>
std::vector<Change<Kind>> head_faults();

template <>
std::vector<Change<ResourceKind>> head_faults<ResourceKind>() {
  using R = MemoryLayout;
  return {
      {"signature", [](R& r) { r.signature = 0; }, "Metadata has bad signature"},
      {"device", [](R& r) { r.device_uuid[15] ^= 1; }, "Metadata device version mismatch"},
      {"driver", [](R& r) { r.driver_uuid[4] = 2; }, "Metadata driver version mismatch"},
      {"version", [](R& r) { r.driver_uuid[8] = 9; }, "Metadata memory layout version mismatch"},
      {"size", [](R& r) { r.size = 0; }, "Size of metadata is mismatched"},
  };
}

template <>
std::vector<Change<SurfaceKind>> head_faults<SurfaceKind>() {
  using R = SurfaceMetadata;
  return {
      {"signature", [](R& r) { r.signature = 0; }, "Metadata has bad signature"},
      {"size", [](R& r) { r.size = 0; }, "Size of metadata is mismatched"},
      {"device", [](R& r) { r.device_uuid[15] ^= 1; }, "Metadata device version mismatch"},
      {"driver", [](R& r) { r.driver_uuid[0] = 5; }, "Metadata driver version mismatch"},
      {"guid", [](R& r) { r.guid = 0; }, "Metadata guid has invalid value"},
  };
}

TYPED_TEST(Validators, TheFirstFaultIsReported) {
  USE_KIND;
  std::vector<Change<Kind>> faults = head_faults<Kind>();
  const std::vector<Change<Kind>> common{
      {"alignment", [](R& r) { r.alignment = 3; }, "Metadata alignment is not pot"},
      {"total", [](R& r) { r.total_size -= 2; }, "Metadata surface size is not aligned"},
      {"samples", [](R& r) { r.samples = 3; }, "Metadata samples invalid count"},
      {"levels", [](R& r) { r.levels = 0; }, "Metadata levels is invalid value"},
      {"format", [](R& r) { r.format = 722; }, "Metadata format is not recognized"},
      {"level 0", [](R& r) { r.level[0].size = 0; }, "Metadata level size is invalid value"},
      {"last of a plane", [](R& r) { r.level[0].plane[0].flag_size = 0x8001; },
       "Metadata level flagbuffer slice pitch mismatch {level 0, plane 0"},
  };
  faults.insert(faults.end(), common.begin(), common.end());
  for (const Change<Kind>& fault : level_faults<Kind>()) faults.push_back(fault);

  harness::Gpu gpu(harness::kUnknownChip);
  for (std::size_t i = 0; i < faults.size(); ++i) {
    for (const std::size_t j : {i, i + 1}) {
      if (j == faults.size()) continue;
      R record = valid<Kind>();
      faults[j].change(record);
      if (j != i) faults[i].change(record);
      EXPECT_THAT(verdict<Kind>(gpu, record), testing::StartsWith(faults[i].text))
          << faults[i].what << " and " << faults[j].what;
    }
  }
}

TYPED_TEST(Validators, TheFirstFaultIsReportedWithoutDepthBuffersToo) {
  USE_KIND;
  std::vector<Change<Kind>> faults;
  for (const Change<Kind>& fault : level_faults<Kind>()) {
    // Their own faults need the buffers.
    if (fault.text.find("lrz") == std::string::npos) faults.push_back(fault);
  }
  harness::Gpu gpu(harness::kUnknownChip);
  for (std::size_t i = 0; i + 1 < faults.size(); ++i) {
    R record = valid<Kind>();
    for (auto& level : record.level) remove_lrz(level);
    faults[i + 1].change(record);
    faults[i].change(record);
    EXPECT_THAT(verdict<Kind>(gpu, record), testing::StartsWith(faults[i].text))
        << faults[i].what << " and " << faults[i + 1].what;
  }
}

TYPED_TEST(Validators, EveryWordThatNoCheckReadsMayHoldAnything) {
  USE_KIND;
  harness::Gpu gpu(harness::kUnknownChip);
  const R record = valid<Kind>();
  // Flipping all bits of a word shows whether it is compared. Counted by hand:
  //   resource: signature, size, 4 device words, driver words 1 and 2, the lower word of the total
  //             size (a larger upper one only admits more), alignment, format, samples, levels: 13
  //             (linear_fallback is read for linear levels alone);
  //   surface:  the same with one driver word, 0, instead of two; the guid stays other than 0: 12;
  //   a level:  slices, tiled, size (2), planes, lrz valid, offset (2), size (2), pitch, slice
  //             pitch (2), width, height, fc valid, offset (2), size (2): 20;
  //   a plane:  image offset (2), size (2), pitch, slice pitch (2), element size, width, height,
  //             flag valid, offset (2), size (2), pitch, slice pitch (2): 18. Of the surface's, the
  //             actual width and height are meant; the allocated ones only must not be 0.
  // Level 0 has three planes, level 1 two.
  std::size_t compared = 0;
  for (std::size_t i = 0; i < sizeof record; i += 4) {
    R changed = record;
    auto* word = reinterpret_cast<unsigned char*>(&changed) + i;
    for (std::size_t b = 0; b < 4; ++b) word[b] = static_cast<unsigned char>(~word[b]);
    if (!verdict<Kind>(gpu, changed).empty()) ++compared;
  }
  constexpr std::size_t kHeadWords = std::is_same_v<Kind, ResourceKind> ? 13 : 12;
  EXPECT_NUMBER(compared, kHeadWords + 2 * 20 + 5 * 18);
}

TYPED_TEST(Validators, EveryByteOfTheDeviceCounts) {
  USE_KIND;
  harness::Gpu gpu(harness::kUnknownChip);
  for (std::size_t i = 0; i < 16; ++i) {
    R record = valid<Kind>();
    record.device_uuid[i] ^= 0xFF;
    std::string stored = kDeviceText;
    // The text position of byte i: two digits a byte, a hyphen before bytes 4, 6, 8 and 10.
    const std::size_t at = 2 * i + (i >= 4) + (i >= 6) + (i >= 8) + (i >= 10);
    char digits[3];
    std::snprintf(digits, sizeof digits, "%02x", record.device_uuid[i]);
    stored.replace(at, 2, digits);
    EXPECT_EQ(verdict<Kind>(gpu, record), "Metadata device version mismatch {store uuid " + stored +
                                              ", struct uuid " + kDeviceText + "}");
  }
}

}  // namespace
}  // namespace layout_test
