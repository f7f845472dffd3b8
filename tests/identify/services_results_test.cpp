// What the services' answers mean: 0 is success and every other result is failure; every handle but
// 0 is a device.

#include <gmock/gmock.h>

#include <climits>

#include "tests/harness/chips.h"
#include "tests/harness/gpu.h"
#include "tests/identify/gpu_entries.h"

namespace identify_test {
namespace {

using harness::Gpu;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

// Each bit alone, what signed numbers make of the largest ones, and a few whose low byte or half is
// that of a success.
std::vector<uint32_t> results_of_failures() {
  std::vector<uint32_t> results = {3,      0x7F00,     0xFF00,     0xFFFF0000,
                                   0xFFFF, 0x7FFFFFFF, 0xFFFFFFFE, 0xFFFFFFFF};
  for (uint32_t bit = 0; bit < 32; ++bit) results.push_back(1U << bit);
  return results;
}

uint32_t known_chip() {
  return harness::full_chip(6).chip_id;
}

// What a failed query leaves in the record would be taken for an answer by whoever looks at it.
void fail_with(uint32_t result) {
  hxl_sim_set_failure_result(result);
  hxl_sim_set_failures_fill_records(1);
}

TEST(ServicesResults, LibraryThatOpensWithAnythingBut0IsNotOpen) {
  for (const uint32_t result : results_of_failures()) {
    SCOPED_TRACE(result);
    Gpu gpu(known_chip(), HXL_SIM_FAIL_LIBRARY_OPEN);
    fail_with(result);
    EXPECT_NUMBER(gpu->get_gpu_pixel_alignment(), 1);
    EXPECT_THAT(gpu.take_calls(), ElementsAreArray(kQueryWithoutLibrary));
    EXPECT_EQ(gpu.take_messages().size(), 4U);  // it does not open, and what is the chip?
    // The next call tries again.
    hxl_sim_set_failures(0);
    EXPECT_NUMBER(gpu->get_gpu_pixel_alignment(), 64);
  }
}

TEST(ServicesResults, DeviceThatAnswersWithAnythingBut0HasNoChip) {
  for (const uint32_t result : results_of_failures()) {
    SCOPED_TRACE(result);
    Gpu gpu(known_chip(), HXL_SIM_FAIL_GETINFO);
    fail_with(result);
    EXPECT_NUMBER(gpu->get_gpu_pixel_alignment(), 1);
    EXPECT_THAT(gpu.take_calls(), ElementsAreArray(kWholeQuery));
    EXPECT_EQ(gpu.take_messages(), harness::unknown_chip_messages(0));
    // For good.
    hxl_sim_set_failures(0);
    EXPECT_NUMBER(gpu->get_gpu_pixel_alignment(), 1);
    EXPECT_THAT(gpu.take_calls(), IsEmpty());
  }
}

TEST(ServicesResults, SecureContextNeedsALibraryThatOpensWith0) {
  for (const uint32_t result : results_of_failures()) {
    SCOPED_TRACE(result);
    Gpu gpu(known_chip(), HXL_SIM_FAIL_LIBRARY_OPEN);
    fail_with(result);
    hxl_sim_set_secure_context(1);
    EXPECT_NUMBER(gpu->isSecureContextSupportedByGpu(), 0);
    EXPECT_THAT(gpu.take_calls(), ElementsAre("hxl_library_open(2048)"));
    EXPECT_EQ(gpu.take_messages().size(), 1U);
  }
}

TEST(ServicesResults, SecureContextNeedsADeviceThatAnswersWith0) {
  for (const uint32_t result : results_of_failures()) {
    SCOPED_TRACE(result);
    Gpu gpu(known_chip(), HXL_SIM_FAIL_GETINFO_EXT);
    fail_with(result);
    hxl_sim_set_secure_context(1);
    EXPECT_NUMBER(gpu->isSecureContextSupportedByGpu(), 0);
    EXPECT_THAT(gpu.take_calls(), ElementsAre("hxl_library_open(2048)", "hxl_device_open(1, 0)",
                                              "hxl_device_getinfo_ext(device, 280)",
                                              "hxl_device_close(device)", "hxl_library_close()"));
    EXPECT_THAT(gpu.take_messages(), IsEmpty());
  }
}

TEST(ServicesResults, TextThatIsPrintedWithANegativeLengthIsNotPrinted) {
  for (const int32_t length : {-1, -2, -36, -37, INT_MIN}) {
    SCOPED_TRACE(length);
    Gpu gpu(known_chip(), HXL_SIM_FAIL_SNPRINTF);
    hxl_sim_set_failure_result(static_cast<uint32_t>(length));
    const uint8_t uuid[16] = {};
    char text[64] = "as it was";
    EXPECT_NUMBER(gpu->uuid_to_str(text, sizeof text, uuid, sizeof uuid), -1);
    EXPECT_STREQ(text, "as it was");
    EXPECT_THAT(gpu.take_messages(), IsEmpty());
  }
}

// The handles that the device operations were called with since the last time.
std::vector<uint64_t> take_handles() {
  std::vector<uint64_t> handles;
  hxl_sim_call_record call;
  for (std::size_t i = 0; hxl_sim_call(i, &call) != 0; ++i) {
    if (call.operation == HXL_SIM_DEVICE_GETINFO || call.operation == HXL_SIM_DEVICE_CLOSE ||
        call.operation == HXL_SIM_DEVICE_GETINFO_EXT) {
      handles.push_back(call.arguments[0]);
    }
  }
  hxl_sim_clear_calls();
  return handles;
}

class DeviceHandles : public testing::TestWithParam<uint32_t> {};

TEST_P(DeviceHandles, IdentifyTheGpu) {
  Gpu gpu(known_chip());
  hxl_sim_set_next_device(GetParam());
  EXPECT_NUMBER(gpu->get_gpu_pixel_alignment(), 64);
  EXPECT_THAT(take_handles(), ElementsAre(GetParam(), GetParam()));  // asked, closed
  EXPECT_THAT(gpu.take_messages(), IsEmpty());
}

TEST_P(DeviceHandles, TellOfASecureContext) {
  Gpu gpu(known_chip());
  hxl_sim_set_next_device(GetParam());
  hxl_sim_set_secure_context(1);
  EXPECT_NUMBER(gpu->isSecureContextSupportedByGpu(), 1);
  EXPECT_THAT(take_handles(), ElementsAre(GetParam(), GetParam()));
}

INSTANTIATE_TEST_SUITE_P(OfAnyValueBut0, DeviceHandles,
                         testing::Values(1, 0x100, 0x10000, 0x7FFFFFFF, 0x80000000, 0x80000001,
                                         0xFFFF0000, 0xFFFFFFFF));

}  // namespace
}  // namespace identify_test
