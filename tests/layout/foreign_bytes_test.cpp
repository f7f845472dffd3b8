// Bytes that are no word of what is checked, and look like one: what stands in front of a record, and
// what stands behind a level's last plane.
#include "tests/layout/stored_records.h"

namespace layout_test {
namespace {

template <typename Kind>
records::Shape plain_shape(uint32_t levels, uint32_t planes) {
  records::Shape shape = valid_shape<Kind>();
  shape.levels = levels;
  shape.planes = planes;
  shape.slices = 1;
  shape.flags = shape.lrz = false;
  return shape;
}

template <typename Kind>
class ForeignBytes : public testing::Test {};
using Kinds = testing::Types<ResourceKind, SurfaceKind>;
TYPED_TEST_SUITE(ForeignBytes, Kinds);

// A valid level where one of the level before the first would end: only the header divides them.
TYPED_TEST(ForeignBytes, InFrontOfTheRecordAreNoLevel) {
  using Kind = TypeParam;
  using Record = typename Kind::Record;
  using Level = typename Kind::Level;
  harness::Gpu gpu(harness::kUnknownChip);
  Record record = {};
  records::put_valid_record<Kind>(record, plain_shape<Kind>(2, 1));
  const Level valid_level = record.level[0];
  record.level[1].planes = 0;

  std::vector<unsigned char> bytes(sizeof(Level) + sizeof(Record));
  std::memcpy(bytes.data() + offsetof(Record, level), &valid_level, sizeof valid_level);
  unsigned char* const stored = bytes.data() + sizeof(Level);
  std::memcpy(stored, &record, sizeof record);
  EXPECT_NUMBER(Kind::entry(gpu)(stored, kUuids.device, kUuids.driver), KORVEL_FAILURE);
  EXPECT_THAT(gpu.take_messages(),
              testing::ElementsAre(harness::message(
                  Kind::kFunction, "Metadata level planes is invalid value {level 1, planes 0}")));
}

// The words of a depth buffer that the level does not have, where a fourth plane would stand.
TEST(ForeignBytesOfALevel, BehindTheThirdPlaneAreNoPlane) {
  harness::Gpu gpu(harness::kUnknownChip);
  MemoryLayout record = {};
  records::put_valid_record<ResourceKind>(record, plain_shape<ResourceKind>(1, 3));
  LevelLayout& level = record.level[0];
  PlaneLayout fourth = level.plane[0];
  fourth.image_offset = 0;  // its first word is lrz_valid; lrz_fc_valid is flag_valid, 0 as well
  std::memcpy(reinterpret_cast<unsigned char*>(&level) + offsetof(LevelLayout, lrz_valid), &fourth,
              sizeof(LevelLayout) - offsetof(LevelLayout, lrz_valid));
  ASSERT_EQ(verdict<ResourceKind>(gpu, record), "");
  level.plane[2].image_element_size = 0;
  EXPECT_THAT(verdict<ResourceKind>(gpu, record),
              testing::StartsWith("Metadata level image invalid dimensions {level 0, plane 2,"));
}

}  // namespace
}  // namespace layout_test
