// Every check of a level and of a plane, at every level and plane of a full record, and as the last
// level of a shorter one: no level is looked at less than another.
#include "tests/layout/stored_records.h"

namespace layout_test {
namespace {

constexpr uint32_t kLevels = KORVEL_MAX_LEVELS;
constexpr uint32_t kPlanes = KORVEL_MAX_PLANES;

template <typename Kind>
class EveryLevel : public testing::Test {
 protected:
  using Record = typename Kind::Record;
  harness::Gpu gpu_{harness::kUnknownChip};

  // Levels with buffers of every kind go another way through the checks than levels without.
  static std::vector<records::Shape> shapes() {
    std::vector<records::Shape> all;
    for (const bool lrz : {false, true}) {
      for (const uint32_t slices : {1u, 4u}) {
        all.push_back({.levels = kLevels, .slices = slices, .lrz = lrz, .uuids = kUuids});
      }
    }
    return all;
  }

  void expect_verdict(const Record& record, const std::string& text) {
    EXPECT_THAT(verdict<Kind>(gpu_, record), testing::StartsWith(text));
  }

  // The change, in all levels and as the last of as many levels as reach to it.
  template <typename Change>
  void expect_refusal(const records::Shape& shape, uint32_t level, const Change& change,
                      const std::string& text) {
    for (const uint32_t levels : {kLevels, level + 1}) {
      SCOPED_TRACE(std::to_string(levels) + " levels");
      Record record = records::valid_record<Kind>(shape);
      record.levels = levels;
      change(record.level[level]);
      expect_verdict(record, text);
    }
  }
};

using Kinds = testing::Types<ResourceKind, SurfaceKind>;
TYPED_TEST_SUITE(EveryLevel, Kinds);

template <typename Part>
struct Fault {
  const char* text;
  void (*change)(Part&);
};

TYPED_TEST(EveryLevel, HasItsWordsChecked) {
  using Kind = TypeParam;
  using Level = typename Kind::Level;
  const Fault<Level> faults[] = {
      {"size is invalid value", [](Level& l) { l.size = 0; }},
      {"size is invalid value", [](Level& l) { l.size = 0x100000000; }},
      {"slices is invalid value", [](Level& l) { l.slices = 0; }},
      {"slices is invalid value", [](Level& l) { l.slices = 2049; }},
      {"tiled is invalid value", [](Level& l) { l.tiled = 2; }},
      {"planes is invalid value", [](Level& l) { l.planes = 0; }},
      {"planes is invalid value", [](Level& l) { l.planes = 4; }},
      {"lrz valid bit is invalid value", [](Level& l) { l.lrz_valid = 2; }},
      {"lrz fc valid bit is invalid value", [](Level& l) { l.lrz_fc_valid = 2; }},
      {"lrz valid bits mismatch", [](Level& l) { l.lrz_valid ^= 1; }},
      {"lrz valid bits mismatch", [](Level& l) { l.lrz_fc_valid ^= 1; }},
  };
  for (const records::Shape& shape : this->shapes()) {
    for (uint32_t level = 0; level < kLevels; ++level) {
      for (const Fault<Level>& fault : faults) {
        this->expect_refusal(
            shape, level, fault.change,
            std::string("Metadata level ") + fault.text + " {level " + std::to_string(level) + ",");
      }
    }
  }
}

TYPED_TEST(EveryLevel, HasItsDepthBuffersChecked) {
  using Kind = TypeParam;
  using Level = typename Kind::Level;
  const Fault<Level> faults[] = {
      {"buffer exceeds surface bounds", [](Level& l) { l.lrz_offset = 0x100000; }},
      {"size mismatch", [](Level& l) { l.lrz_size = 1; }},
      {"size mismatch", [](Level& l) { l.lrz_slice_pitch = 1; }},
      {"pitch mismatch", [](Level& l) { l.lrz_width = 65; }},
      {"dimensions are invalid", [](Level& l) { l.lrz_width = 0; }},
      {"dimensions are invalid", [](Level& l) { l.lrz_height = 0; }},
      {"fc buffer exceeds surface bounds", [](Level& l) { l.lrz_fc_size = 0x100001; }},
  };
  for (const records::Shape& shape : this->shapes()) {
    if (!shape.lrz) continue;
    for (uint32_t level = 0; level < kLevels; ++level) {
      for (const Fault<Level>& fault : faults) {
        this->expect_refusal(shape, level, fault.change,
                             std::string("Metadata level lrz ") + fault.text + " {level " +
                                 std::to_string(level) + ",");
      }
    }
  }
}

TYPED_TEST(EveryLevel, HasEveryPlaneChecked) {
  using Kind = TypeParam;
  using Level = typename Kind::Level;
  using Plane = typename Kind::Plane;
  const Fault<Plane> faults[] = {
      {"image buffer exceeds surface bounds", [](Plane& p) { p.image_offset = 0x100000; }},
      {"image size mismatch", [](Plane& p) { p.image_size = 1; }},
      {"image size mismatch", [](Plane& p) { p.image_slice_pitch = p.image_size - 1; }},
      {"image pitch mismatch", [](Plane& p) { p.image_pitch = 1; }},
      {"image invalid dimensions", [](Plane& p) { p.image_element_size = 0; }},
      {"image invalid dimensions", [](Plane& p) { p.image_width = 0; }},
      {"image invalid dimensions", [](Plane& p) { p.image_height = 0; }},
      {"flagbuffer valid bit invalid", [](Plane& p) { p.flag_valid = 2; }},
      {"flagbuffer buffer exceeds surface bounds", [](Plane& p) { p.flag_offset = 0x100000; }},
      {"flagbuffer pitch mismatch", [](Plane& p) { p.flag_pitch = 0; }},
      {"flagbuffer pitch mismatch", [](Plane& p) { p.flag_pitch = 0x1001; }},
      {"flagbuffer slice pitch mismatch", [](Plane& p) { p.flag_size = 0x1001; }},
  };
  for (const records::Shape& shape : this->shapes()) {
    for (uint32_t level = 0; level < kLevels; ++level) {
      for (uint32_t plane = 0; plane < kPlanes; ++plane) {
        for (const Fault<Plane>& fault : faults) {
          this->expect_refusal(
              shape, level, [&](Level& l) { fault.change(l.plane[plane]); },
              std::string("Metadata level ") + fault.text + " {level " + std::to_string(level) +
                  ", plane " + std::to_string(plane));
        }
      }
    }
  }
}

// An image whose rows take 2^32 bytes passes, for the product wraps to 0; what stands behind it in
// the record is looked at all the same.
TYPED_TEST(EveryLevel, IsCheckedBehindAnImageWhoseProductWraps) {
  using Kind = TypeParam;
  for (uint32_t plane = 0; plane < kPlanes; ++plane) {
    auto record = records::valid_record<Kind>({.levels = kLevels, .lrz = false, .uuids = kUuids});
    auto& image = record.level[3].plane[plane];
    image.image_pitch = 0x10000;
    image.image_height = 0x10000;
    if constexpr (std::is_same_v<Kind, SurfaceKind>) image.actual_height = 0x10000;
    EXPECT_EQ(verdict<Kind>(this->gpu_, record), "");
    image.flag_valid = 2;
    this->expect_verdict(record, "Metadata level flagbuffer valid bit invalid {level 3, plane " +
                                     std::to_string(plane) + ",");
    image.flag_valid = 0;
    record.level[7].slices = 0;
    this->expect_verdict(record, "Metadata level slices is invalid value {level 7,");
  }
}

TYPED_TEST(EveryLevel, HasNoFlagBufferWhereItIsLinear) {
  using Kind = TypeParam;
  using Level = typename Kind::Level;
  const records::Shape shape = {
      .levels = kLevels, .first_linear_level = 0, .lrz = false, .uuids = kUuids};
  for (uint32_t level = 0; level < kLevels; ++level) {
    for (uint32_t plane = 0; plane < kPlanes; ++plane) {
      for (const uint32_t valid : {1u, 2u, 0xFFFFFFFFu}) {
        const std::string place =
            " {level " + std::to_string(level) + ", plane " + std::to_string(plane);
        this->expect_refusal(
            shape, level, [&](Level& l) { l.plane[plane].flag_valid = valid; },
            valid == 1 ? "Metadata level flagbuffer enabled but tiling is disabled" + place
                       : "Metadata level flagbuffer valid bit invalid" + place);
      }
    }
  }
}

// Levels without other buffers, which are looked at together as long as they are tiled alike.
records::Shape images_alone(uint32_t first_linear_level) {
  return {.levels = kLevels,
          .first_linear_level = first_linear_level,
          .flags = false,
          .lrz = false,
          .uuids = kUuids};
}

TYPED_TEST(EveryLevel, IsTiledOnlyWhereTheLevelsBeforeItAre) {
  using Kind = TypeParam;
  using Level = typename Kind::Level;
  const records::Shape shape = images_alone(0);
  for (uint32_t level = 1; level < kLevels; ++level) {
    this->expect_refusal(
        shape, level, [](Level& l) { l.tiled = 1; },
        "Metadata level tiled bit transitioned from untiled to tiled " + std::to_string(level));
  }
}

TYPED_TEST(EveryLevel, IsTiledOrLinear) {
  using Kind = TypeParam;
  using Level = typename Kind::Level;
  for (const uint32_t first_linear_level : {0u, 1u, kLevels - 1, kLevels}) {
    for (uint32_t level = 0; level < kLevels; ++level) {
      for (const uint32_t tiled : {2u, 3u, 0x100u, 0x80000000u, 0x80000001u, 0xFFFFFFFFu}) {
        this->expect_refusal(
            images_alone(first_linear_level), level, [&](Level& l) { l.tiled = tiled; },
            "Metadata level tiled is invalid value {level " + std::to_string(level) + ", tiled " +
                std::to_string(tiled) + "}");
      }
    }
  }
}

TYPED_TEST(EveryLevel, IsLinearOnlyWhereTheRecordAllowsIt) {
  using Kind = TypeParam;
  for (uint32_t first_linear = 1; first_linear < kLevels; ++first_linear) {
    auto record = records::valid_record<Kind>(images_alone(first_linear));
    EXPECT_EQ(verdict<Kind>(this->gpu_, record), "");
    record.linear_fallback = 0;
    this->expect_verdict(record,
                         "Metadata level has linear fallback but didnt enable bit in struct " +
                             std::to_string(first_linear));
  }
}

}  // namespace
}  // namespace layout_test
