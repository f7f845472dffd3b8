// Building and printing UUIDs.

#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <climits>
#include <functional>

#include "tests/harness/chips.h"
#include "tests/harness/gpu.h"
#include "tests/identify/gpu_entries.h"

namespace {

using harness::Gpu;
using harness::message;
using testing::Each;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

constexpr uint8_t kCanary = 0xC5;
using Uuid = std::array<uint8_t, 16>;

// UUIDs are four words, each stored little-endian.
// 0x5A52, family 7, model code 0x060511, revision 0x0511010A.
constexpr Uuid kDeviceUuid = {0x52, 0x5A, 0x00, 0x00,  //
                              0x07, 0x00, 0x00, 0x00,  //
                              0x11, 0x05, 0x06, 0x00,  //
                              0x0A, 0x01, 0x11, 0x05};
// 0xBEEF, family 0xFFFFFFFF, model code 0x01020304, revision 0x80000000.
constexpr Uuid kOverrideUuid = {0xEF, 0xBE, 0x00, 0x00,  //
                                0xFF, 0xFF, 0xFF, 0xFF,  //
                                0x04, 0x03, 0x02, 0x01,  //
                                0x00, 0x00, 0x00, 0x80};
// 4, 1, 3 (the layout version), 0.
constexpr Uuid kDriverUuid = {4, 0, 0, 0,  //
                              1, 0, 0, 0,  //
                              3, 0, 0, 0,  //
                              0, 0, 0, 0};

struct DeviceRequest {
  int32_t length = 16;
  uint32_t family_id = 7;
  uint32_t model_code = 0x060511;
  uint32_t rev_id = 0x0511010A;
};

int32_t device_uuid(Gpu& gpu, uint8_t* out, const DeviceRequest& r) {
  return gpu->get_device_uuid(out, r.length, r.family_id, r.model_code, r.rev_id);
}

int32_t override_uuid(Gpu& gpu, uint8_t* out, uint16_t word_0, const DeviceRequest& r) {
  return gpu->get_override_device_uuid(out, r.length, r.family_id, r.model_code, r.rev_id, word_0);
}

struct Builder {
  const char* name;
  std::function<int32_t(Gpu&, uint8_t*, int32_t)> build;
  Uuid uuid;
};

const std::vector<Builder>& builders() {
  static const std::vector<Builder> all = {
      {"get_device_uuid",
       [](Gpu& gpu, uint8_t* out, int32_t length) {
         return device_uuid(gpu, out, {.length = length});
       },
       kDeviceUuid},
      {"get_override_device_uuid",
       [](Gpu& gpu, uint8_t* out, int32_t length) {
         return override_uuid(gpu, out, 0xBEEF,
                              {.length = length,
                               .family_id = 0xFFFFFFFF,
                               .model_code = 0x01020304,
                               .rev_id = 0x80000000});
       },
       kOverrideUuid},
      {"get_driver_uuid",
       [](Gpu& gpu, uint8_t* out, int32_t length) { return gpu->get_driver_uuid(out, length); },
       kDriverUuid},
  };
  return all;
}

// A UUID's place with 16 bytes before it and 32 behind it.
struct Buffer {
  static constexpr std::size_t kBefore = 16;
  std::array<uint8_t, 64> bytes;

  Buffer() { bytes.fill(kCanary); }
  uint8_t* at(std::size_t shift) { return bytes.data() + kBefore + shift; }

  void expect_holds(const Uuid& uuid, std::size_t shift) const {
    std::array<uint8_t, 64> expected;
    expected.fill(kCanary);
    std::copy(uuid.begin(), uuid.end(), expected.begin() + kBefore + shift);
    EXPECT_THAT(bytes, ElementsAreArray(expected));
  }
};

TEST(Uuid, BuildersWriteExactly16Bytes) {
  Gpu gpu(harness::kUnknownChip);
  for (const Builder& builder : builders()) {
    SCOPED_TRACE(builder.name);
    for (const int32_t length : {16, 17, 64, INT_MAX}) {
      Buffer buffer;
      EXPECT_EQ(builder.build(gpu, buffer.at(0), length), 0);
      buffer.expect_holds(builder.uuid, 0);
    }
  }
  EXPECT_THAT(gpu.take_messages(), IsEmpty());
}

TEST(Uuid, BuildersTakeAnyAlignment) {
  Gpu gpu(harness::kUnknownChip);
  for (const Builder& builder : builders()) {
    SCOPED_TRACE(builder.name);
    for (const std::size_t shift : {1U, 2U, 3U, 4U}) {
      Buffer buffer;
      EXPECT_EQ(builder.build(gpu, buffer.at(shift), 16), 0);
      buffer.expect_holds(builder.uuid, shift);
    }
  }
}

TEST(Uuid, BuildersRefuseFewerThan16BytesAndWriteNothing) {
  Gpu gpu(harness::kUnknownChip);
  for (const Builder& builder : builders()) {
    SCOPED_TRACE(builder.name);
    for (const int32_t length : {15, 1, 0, -1, -16, INT_MIN}) {
      Buffer buffer;
      EXPECT_EQ(builder.build(gpu, buffer.at(0), length), -1);
      EXPECT_THAT(buffer.bytes, Each(kCanary));
      EXPECT_THAT(gpu.take_messages(),
                  ElementsAre(message(builder.name, "Length of uuid array is too small")));
    }
  }
}

TEST(Uuid, BuildersRefuseASmallLengthBeforeTheyLookAtTheArray) {
  Gpu gpu(harness::kUnknownChip);
  for (const Builder& builder : builders()) {
    EXPECT_EQ(builder.build(gpu, nullptr, 15), -1);
  }
}

TEST(Uuid, OverrideWordIsExtendedWithZeros) {
  Gpu gpu(harness::kUnknownChip);
  Uuid uuid;
  EXPECT_EQ(override_uuid(gpu, uuid.data(), 0xFFFF, {.family_id = 0, .model_code = 0, .rev_id = 0}),
            0);
  EXPECT_THAT(uuid, ElementsAre(0xFF, 0xFF, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0));
}

TEST(Uuid, OverrideWithTheUsualWordIsTheDeviceUuid) {
  Gpu gpu(harness::kUnknownChip);
  Uuid uuid;
  EXPECT_EQ(override_uuid(gpu, uuid.data(), 0x5A52, {}), 0);
  EXPECT_EQ(uuid, kDeviceUuid);
}

TEST(Uuid, LayoutsCarryTheBuildersUuids) {
  const harness::ChipData& chip = harness::full_chip(7);
  Gpu gpu(chip.chip_id);
  LayoutMetadata blob{};
  ASSERT_EQ(identify_test::init_layout(gpu.library(), &blob, {}), 0U);
  Uuid uuid;
  EXPECT_EQ(device_uuid(gpu, uuid.data(), {.model_code = chip.model_code, .rev_id = chip.rev_id}),
            0);
  EXPECT_THAT(blob.layout.device_uuid, ElementsAreArray(uuid));
  EXPECT_EQ(gpu->get_driver_uuid(uuid.data(), 16), 0);
  EXPECT_THAT(blob.layout.driver_uuid, ElementsAreArray(uuid));
}

// 64 bytes of text behind 8 that must stay.
struct Text {
  std::array<char, 72> bytes;

  Text() { bytes.fill('#'); }
  char* data() { return bytes.data() + 8; }

  // `expected` and its terminator, and nothing else.
  void expect_holds(const std::string& expected) const {
    std::string whole(bytes.size(), '#');
    whole.replace(8, expected.size() + 1, expected + '\0');
    EXPECT_EQ(std::string(bytes.begin(), bytes.end()), whole);
  }
  void expect_untouched() const { EXPECT_THAT(bytes, Each('#')); }
};

struct TextRequest {
  int32_t text_size = 37;  // 32 digits, 4 hyphens and the terminator
  const uint8_t* uuid = kDriverUuid.data();
  uint32_t uuid_length = 16;
};

int32_t print_uuid(const harness::Library& library, char* text, const TextRequest& r) {
  return library.uuid_to_str(text, r.text_size, r.uuid, r.uuid_length);
}

constexpr char kDriverText[] = "04000000-0100-0000-0300-000000000000";

TEST(UuidText, OfTheDriverIsItsBytesInOrder) {
  Gpu gpu(harness::kUnknownChip);
  Text text;
  EXPECT_EQ(print_uuid(gpu.library(), text.data(), {}), 0);
  text.expect_holds(kDriverText);
}

TEST(UuidText, IsLowerCaseInStorageOrderInFiveGroups) {
  Gpu gpu(harness::kUnknownChip);
  constexpr Uuid kUuid = {0x01, 0x23, 0x45, 0x67, 0x89, 0xAB, 0xCD, 0xEF,
                          0xFE, 0xDC, 0xBA, 0x98, 0x76, 0x54, 0x32, 0x10};
  Text text;
  EXPECT_EQ(print_uuid(gpu.library(), text.data(), {.uuid = kUuid.data()}), 0);
  text.expect_holds("01234567-89ab-cdef-fedc-ba9876543210");
}

TEST(UuidText, OfTheDeviceAndTheOverrideIsTheirBytesInOrder) {
  Gpu gpu(harness::kUnknownChip);
  Text text;
  EXPECT_EQ(print_uuid(gpu.library(), text.data(), {.text_size = 64, .uuid = kDeviceUuid.data()}),
            0);
  text.expect_holds("525a0000-0700-0000-1105-06000a011105");
  Text override_text;
  EXPECT_EQ(print_uuid(gpu.library(), override_text.data(),
                       {.text_size = 64, .uuid = kOverrideUuid.data()}),
            0);
  override_text.expect_holds("efbe0000-ffff-ffff-0403-020100000080");
}

TEST(UuidText, Needs37BytesAndIsCutToFewer) {
  Gpu gpu(harness::kUnknownChip);
  struct Case {
    int32_t text_size;
    int32_t result;
    const char* text;
  };
  constexpr Case kCases[] = {
      {.text_size = 1, .result = -1, .text = ""},
      {.text_size = 2, .result = -1, .text = "0"},
      {.text_size = 10, .result = -1, .text = "04000000-"},
      {.text_size = 36, .result = -1, .text = "04000000-0100-0000-0300-00000000000"},
      {.text_size = 37, .result = 0, .text = kDriverText},
      {.text_size = 38, .result = 0, .text = kDriverText},
      {.text_size = 64, .result = 0, .text = kDriverText},
      {.text_size = INT_MAX, .result = 0, .text = kDriverText},
  };
  for (const Case& c : kCases) {
    SCOPED_TRACE(c.text_size);
    Text text;
    EXPECT_EQ(print_uuid(gpu.library(), text.data(), {.text_size = c.text_size}), c.result);
    text.expect_holds(c.text);
  }
  EXPECT_THAT(gpu.take_messages(), IsEmpty());
}

TEST(UuidText, WithoutRoomFailsSilentlyAndWritesNothing) {
  Gpu gpu(harness::kUnknownChip);
  for (const int32_t size : {0, -1, -37, INT_MIN}) {
    SCOPED_TRACE(size);
    Text text;
    EXPECT_EQ(print_uuid(gpu.library(), text.data(), {.text_size = size}), -1);
    text.expect_untouched();
  }
  EXPECT_EQ(print_uuid(gpu.library(), nullptr, {.text_size = 0}), -1);
  EXPECT_THAT(gpu.take_messages(), IsEmpty());
}

TEST(UuidText, FailsWhenItCannotBePrinted) {
  // Not a Gpu: that one takes the misuse for the library's own.
  hxl_sim_reset();
  harness::Library library = harness::load_library();
  EXPECT_EQ(print_uuid(library, nullptr, {.text_size = 64}), -1);
  EXPECT_EQ(hxl_sim_misuse_count(), 1U);
  harness::unload_library(library);
  hxl_sim_reset();
}

TEST(UuidText, RefusesAnyOtherLengthOfTheUuid) {
  Gpu gpu(harness::kUnknownChip);
  struct Case {
    uint32_t length;
    const char* text;
  };
  constexpr Case kCases[] = {
      {.length = 0, .text = "Bad uuid length 0"},
      {.length = 15, .text = "Bad uuid length 15"},
      {.length = 17, .text = "Bad uuid length 17"},
      {.length = 0x80000010, .text = "Bad uuid length 2147483664"},
      {.length = 0xFFFFFFFF, .text = "Bad uuid length 4294967295"},
  };
  for (const Case& c : kCases) {
    // A length that is wrong is reported whatever the room for the text.
    for (const int32_t size : {37, 1, 0, -1}) {
      Text text;
      EXPECT_EQ(
          print_uuid(gpu.library(), text.data(), {.text_size = size, .uuid_length = c.length}), -1);
      text.expect_untouched();
      EXPECT_THAT(gpu.take_messages(), ElementsAre(message("uuid_to_str", c.text)));
    }
  }
  EXPECT_EQ(print_uuid(gpu.library(), nullptr, {.uuid = nullptr, .uuid_length = 0}), -1);
}

TEST(UuidText, TakesAUuidOfAnyAlignment) {
  Gpu gpu(harness::kUnknownChip);
  for (const std::size_t shift : {1U, 2U, 3U}) {
    std::array<uint8_t, 20> bytes{};
    std::copy(kDriverUuid.begin(), kDriverUuid.end(), bytes.begin() + shift);
    Text text;
    EXPECT_EQ(print_uuid(gpu.library(), text.data(), {.uuid = bytes.data() + shift}), 0);
    text.expect_holds(kDriverText);
  }
}

}  // namespace
