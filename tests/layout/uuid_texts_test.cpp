// The UUIDs in the validators' messages: where they are printed to, and what a message says when
// they cannot be printed.
#include "tests/layout/stored_records.h"

namespace layout_test {
namespace {

// Every message with UUIDs, on a valid record.
struct Mismatch {
  const char* message;
  std::size_t first_changed_byte;
};
template <typename Kind>
std::vector<Mismatch> mismatches();

template <>
std::vector<Mismatch> mismatches<ResourceKind>() {
  using R = ResourceKind::Record;
  return {{"Metadata device version mismatch", offsetof(R, device_uuid)},
          {"Metadata driver version mismatch", offsetof(R, driver_uuid) + 4},
          {"Metadata memory layout version mismatch", offsetof(R, driver_uuid) + 8}};
}
template <>
std::vector<Mismatch> mismatches<SurfaceKind>() {
  using R = SurfaceKind::Record;
  return {{"Metadata device version mismatch", offsetof(R, device_uuid)},
          {"Metadata driver version mismatch", offsetof(R, driver_uuid)}};
}

template <typename Kind>
typename Kind::Record changed_at(std::size_t byte) {
  typename Kind::Record record = valid<Kind>();
  reinterpret_cast<unsigned char*>(&record)[byte] ^= 0x80;
  return record;
}

// The sizes that os_snprintf was given since the last time.
std::vector<uint64_t> take_sizes_of_texts() {
  std::vector<uint64_t> sizes;
  hxl_sim_call_record call;
  for (std::size_t i = 0; hxl_sim_call(i, &call) != 0; ++i) {
    if (call.operation == HXL_SIM_SNPRINTF) sizes.push_back(call.arguments[0]);
  }
  hxl_sim_clear_calls();
  return sizes;
}

template <typename Kind>
class UuidTexts : public testing::Test {};
using Kinds = testing::Types<ResourceKind, SurfaceKind>;
TYPED_TEST_SUITE(UuidTexts, Kinds);

TYPED_TEST(UuidTexts, AreTwoOfUpTo64Bytes) {
  using Kind = TypeParam;
  harness::Gpu gpu(harness::kUnknownChip);
  for (const Mismatch& mismatch : mismatches<Kind>()) {
    const auto record = changed_at<Kind>(mismatch.first_changed_byte);
    EXPECT_THAT(verdict<Kind>(gpu, record), testing::StartsWith(mismatch.message));
    EXPECT_THAT(take_sizes_of_texts(), testing::ElementsAre(64, 64));
  }
}

TYPED_TEST(UuidTexts, AreNotPrintedForAValidRecord) {
  using Kind = TypeParam;
  harness::Gpu gpu(harness::kUnknownChip);
  EXPECT_EQ(verdict<Kind>(gpu, valid<Kind>()), "");
  EXPECT_THAT(take_sizes_of_texts(), testing::IsEmpty());
}

// Leaves text on the stack where the next call has its variables.
[[gnu::noinline]] void leave_text_on_the_stack() {
  char text[16384];
  std::memset(text, 'T', sizeof text);
  text[sizeof text - 1] = '\0';
  asm volatile("" : : "r"(text) : "memory");
}

TYPED_TEST(UuidTexts, AreEmptyWhenTheyCannotBePrinted) {
  using Kind = TypeParam;
  harness::Gpu gpu(harness::kUnknownChip);
  for (const Mismatch& mismatch : mismatches<Kind>()) {
    const auto record = changed_at<Kind>(mismatch.first_changed_byte);
    hxl_sim_set_failures(0);
    EXPECT_THAT(verdict<Kind>(gpu, record), testing::HasSubstr("0000-"));
    hxl_sim_set_failures(HXL_SIM_FAIL_SNPRINTF);
    leave_text_on_the_stack();
    const uint32_t result = Kind::entry(gpu)(&record, kUuids.device, kUuids.driver);
    EXPECT_NUMBER(result, KORVEL_FAILURE);
    EXPECT_THAT(
        gpu.take_messages(),
        testing::ElementsAre(harness::message(
            Kind::kFunction, mismatch.message + std::string(" {store uuid , struct uuid }"))));
  }
}

}  // namespace
}  // namespace layout_test
