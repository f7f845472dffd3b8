// Records, blobs and UUIDs of any alignment: the answers are those of aligned ones.
#include "tests/layout/stored_records.h"

namespace layout_test {
namespace {

// Twice the alignment of the widest loads that compilers make of neighbouring words.
constexpr std::size_t kAlignments = 32;

// Bytes that start so far behind an aligned address, of which none can be written.
class MisalignedBytes {
 public:
  MisalignedBytes(const void* bytes, std::size_t size, std::size_t start)
      : guarded_((size + start + kAlignments - 1) / kAlignments * kAlignments), start_(start) {
    std::memcpy(data(), bytes, size);
    guarded_.make_read_only();
  }
  unsigned char* data() const { return guarded_.data() + start_; }

 private:
  harness::GuardedRecord guarded_;
  std::size_t start_;
};

struct Answer {
  uint32_t result;
  std::vector<harness::Message> messages;
  friend bool operator==(const Answer&, const Answer&) = default;
};

template <typename Kind>
Answer validated(harness::Gpu& gpu, const unsigned char* record, const uint8_t* device,
                 const uint8_t* driver) {
  const uint32_t result = Kind::entry(gpu)(record, device, driver);
  return {.result = result, .messages = gpu.take_messages()};
}

template <typename Kind>
class MisalignedRecords : public testing::Test {};
using Kinds = testing::Types<ResourceKind, SurfaceKind>;
TYPED_TEST_SUITE(MisalignedRecords, Kinds);

// A record that passes, and one for each kind of check that reads words of its own.
template <typename Kind>
std::vector<Change<Kind>> records_to_judge() {
  using R = typename Kind::Record;
  return {
      {"valid", [](R&) {}, ""},
      {"plain", [](R& r) { r = plain<Kind>(kSurfaceBytes); }, ""},
      {"device", [](R& r) { r.device_uuid[9] ^= 1; }, "Metadata device version mismatch"},
      {"total", [](R& r) { r.total_size = 0; }, "Metadata surface size is not aligned"},
      {"level", [](R& r) { r.level[1].size = 0; }, "Metadata level size is invalid value"},
      {"depth", [](R& r) { r.level[1].lrz_offset = kSurfaceBytes; }, "Metadata level lrz buffer"},
      {"fast clear", [](R& r) { r.level[1].lrz_fc_size = kSurfaceBytes; },
       "Metadata level lrz fc buffer"},
      {"image", [](R& r) { r.level[1].plane[1].image_size = kSurfaceBytes; },
       "Metadata level image buffer"},
      {"flags", [](R& r) { r.level[1].plane[1].flag_pitch = 0; },
       "Metadata level flagbuffer pitch mismatch"},
  };
}

TYPED_TEST(MisalignedRecords, AreJudgedAsAlignedOnes) {
  using Kind = TypeParam;
  harness::Gpu gpu(harness::kUnknownChip);
  for (const Change<Kind>& c : records_to_judge<Kind>()) {
    typename Kind::Record record = valid<Kind>();
    c.change(record);
    const MisalignedBytes aligned(&record, Kind::kBytes, 0);
    const Answer expected = validated<Kind>(gpu, aligned.data(), kUuids.device, kUuids.driver);
    if (c.text.empty()) {
      ASSERT_TRUE(expected.messages.empty()) << c.what;
    } else {
      ASSERT_EQ(expected.messages.size(), 1U) << c.what;
      EXPECT_THAT(expected.messages[0].text, testing::StartsWith(c.text));
    }
    for (std::size_t start = 1; start < kAlignments; ++start) {
      const MisalignedBytes moved(&record, Kind::kBytes, start);
      EXPECT_EQ(validated<Kind>(gpu, moved.data(), kUuids.device, kUuids.driver), expected)
          << c.what << ", " << start << " bytes from alignment";
    }
  }
}

TYPED_TEST(MisalignedRecords, AreHeldAgainstUuidsOfAnyAlignment) {
  using Kind = TypeParam;
  harness::Gpu gpu(harness::kUnknownChip);
  const auto record = valid<Kind>();
  for (std::size_t start = 0; start < kAlignments; ++start) {
    const MisalignedBytes device(kUuids.device, KORVEL_UUID_BYTES, start);
    const MisalignedBytes driver(kUuids.driver, KORVEL_UUID_BYTES, kAlignments - 1 - start);
    for (const std::size_t record_start : {std::size_t{0}, start}) {
      const MisalignedBytes moved(&record, Kind::kBytes, record_start);
      const Answer answer = validated<Kind>(gpu, moved.data(), device.data(), driver.data());
      EXPECT_NUMBER(answer.result, KORVEL_SUCCESS) << start;
      EXPECT_TRUE(answer.messages.empty()) << start;
    }
  }
}

TEST(MisalignedBlobs, HoldTheSameAllocationSize) {
  const harness::Gpu gpu(harness::kUnknownChip);
  for (const uint32_t record_offset : {24U, 25U, 28U, 31U}) {
    LayoutMetadata blob = canary<LayoutMetadata>();
    const uint32_t size = 5512;
    const uint64_t total_size = 5512 + 0x200001000;
    auto* bytes = reinterpret_cast<unsigned char*>(&blob);
    std::memcpy(bytes + 16, &record_offset, 4);
    std::memcpy(bytes + record_offset + 4, &size, 4);
    std::memcpy(bytes + record_offset + 40, &total_size, 8);
    for (std::size_t start = 0; start < kAlignments; ++start) {
      const MisalignedBytes moved(&blob, sizeof blob, start);
      EXPECT_NUMBER(gpu->korvel_get_aligned_gpu_buffer_size(moved.data()), 0x200001000)
          << start << " bytes from alignment";
    }
  }
}

}  // namespace
}  // namespace layout_test
