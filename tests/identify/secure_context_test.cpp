// The secure-context query, which asks the device on every call and shares nothing with the
// identification.

#include <gmock/gmock.h>

#include <cstdio>

#include "tests/harness/chips.h"
#include "tests/harness/gpu.h"
#include "tests/identify/gpu_entries.h"

namespace identify_test {
namespace {

using harness::Gpu;
using harness::message;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

// Unlike Gpu::take_calls(), with the clearing of the record.
std::vector<std::string> take_calls_and_memsets() {
  std::vector<std::string> calls;
  hxl_sim_call_record record;
  for (std::size_t i = 0; hxl_sim_call(i, &record) != 0; ++i) {
    std::string call = hxl_sim_operation_name(record.operation);
    if (record.operation == HXL_SIM_MEMSET) {
      char arguments[64];
      std::snprintf(arguments, sizeof arguments, "(%u, %u)",
                    static_cast<uint32_t>(record.arguments[0]),
                    static_cast<uint32_t>(record.arguments[1]));
      call += arguments;
    }
    calls.push_back(call);
  }
  hxl_sim_clear_calls();
  return calls;
}

const std::vector<std::string> kSecureContextQuery = {
    "hxl_library_open(2048)", "hxl_device_open(1, 0)", "hxl_device_getinfo_ext(device, 280)",
    "hxl_device_close(device)", "hxl_library_close()"};

TEST(SecureContext, IsTheDevicesWordAsItIs) {
  Gpu gpu(harness::full_chip(6).chip_id);
  for (const uint32_t word : {0U, 1U, 2U, 0x100U, 0x80000000U, 0xFFFFFFFFU}) {
    hxl_sim_set_secure_context(word);
    EXPECT_NUMBER(gpu->isSecureContextSupportedByGpu(), word);
    EXPECT_THAT(gpu.take_calls(), ElementsAreArray(kSecureContextQuery));
  }
  EXPECT_THAT(gpu.take_messages(), IsEmpty());
}

// The stand-in counts a record with any other byte set, or with another size word, as misuse, which
// the end of each Gpu checks.
TEST(SecureContext, RecordIsClearedAndSizedAfterTheDeviceOpens) {
  Gpu gpu(harness::full_chip(6).chip_id);
  gpu->isSecureContextSupportedByGpu();
  EXPECT_THAT(take_calls_and_memsets(),
              ElementsAre("hxl_library_open", "hxl_device_open", "os_memset(0, 280)",
                          "hxl_device_getinfo_ext", "hxl_device_close", "hxl_library_close"));
}

TEST(SecureContext, RecordIsClearedEvenWithoutADevice) {
  Gpu gpu(harness::full_chip(6).chip_id, HXL_SIM_FAIL_DEVICE_OPEN);
  gpu->isSecureContextSupportedByGpu();
  EXPECT_THAT(take_calls_and_memsets(), ElementsAre("hxl_library_open", "hxl_device_open",
                                                    "os_memset(0, 280)", "hxl_library_close"));
}

TEST(SecureContext, WithoutTheLibraryIs0AndReportsOnEveryCall) {
  Gpu gpu(harness::full_chip(6).chip_id, HXL_SIM_FAIL_LIBRARY_OPEN);
  hxl_sim_set_secure_context(1);
  for (int call = 0; call < 3; ++call) {
    EXPECT_NUMBER(gpu->isSecureContextSupportedByGpu(), 0);
    EXPECT_THAT(gpu.take_calls(), ElementsAre("hxl_library_open(2048)"));
    EXPECT_THAT(gpu.take_messages(), ElementsAre(message("isSecureContextSupportedByGpu",
                                                         "Failed to open HXL Library!!!!")));
  }
  hxl_sim_set_failures(0);
  EXPECT_NUMBER(gpu->isSecureContextSupportedByGpu(), 1);
}

TEST(SecureContext, WithoutADeviceIs0AndClosesNoDevice) {
  Gpu gpu(harness::full_chip(6).chip_id, HXL_SIM_FAIL_DEVICE_OPEN);
  hxl_sim_set_secure_context(1);
  EXPECT_NUMBER(gpu->isSecureContextSupportedByGpu(), 0);
  EXPECT_THAT(gpu.take_calls(), ElementsAre("hxl_library_open(2048)", "hxl_device_open(1, 0)",
                                            "hxl_library_close()"));
  EXPECT_THAT(gpu.take_messages(), IsEmpty());
}

TEST(SecureContext, OfADeviceThatDoesNotAnswerIs0) {
  Gpu gpu(harness::full_chip(6).chip_id, HXL_SIM_FAIL_GETINFO_EXT);
  hxl_sim_set_secure_context(1);
  EXPECT_NUMBER(gpu->isSecureContextSupportedByGpu(), 0);
  EXPECT_THAT(gpu.take_calls(), ElementsAreArray(kSecureContextQuery));
  EXPECT_THAT(gpu.take_messages(), IsEmpty());
}

TEST(SecureContext, AnswerIsNotKept) {
  Gpu gpu(harness::full_chip(6).chip_id);
  hxl_sim_set_secure_context(1);
  EXPECT_NUMBER(gpu->isSecureContextSupportedByGpu(), 1);
  hxl_sim_set_secure_context(0);
  EXPECT_NUMBER(gpu->isSecureContextSupportedByGpu(), 0);
  hxl_sim_set_secure_context(7);
  hxl_sim_set_failures(HXL_SIM_FAIL_GETINFO_EXT);
  EXPECT_NUMBER(gpu->isSecureContextSupportedByGpu(), 0);
  hxl_sim_set_failures(HXL_SIM_FAIL_DEVICE_OPEN);
  EXPECT_NUMBER(gpu->isSecureContextSupportedByGpu(), 0);
  hxl_sim_set_failures(0);
  EXPECT_NUMBER(gpu->isSecureContextSupportedByGpu(), 7);
}

TEST(SecureContext, DoesNotDependOnTheChip) {
  for (const uint32_t chip_id : {0U, harness::kUnknownChip, 0xFFFFFFFFU}) {
    Gpu gpu(chip_id, HXL_SIM_FAIL_GETINFO);
    hxl_sim_set_secure_context(1);
    EXPECT_NUMBER(gpu->isSecureContextSupportedByGpu(), 1);
    EXPECT_THAT(gpu.take_calls(), ElementsAreArray(kSecureContextQuery));
    EXPECT_THAT(gpu.take_messages(), IsEmpty());
  }
}

TEST(SecureContext, LeavesTheIdentificationToOthers) {
  Gpu gpu(harness::full_chip(6).chip_id);
  gpu->isSecureContextSupportedByGpu();
  gpu.take_calls();
  EXPECT_NUMBER(gpu->get_gpu_pixel_alignment(), 64);
  EXPECT_THAT(gpu.take_calls(), ElementsAreArray(kWholeQuery));
}

TEST(SecureContext, FailuresLeaveTheIdentificationAlone) {
  for (const uint32_t failure :
       {HXL_SIM_FAIL_LIBRARY_OPEN, HXL_SIM_FAIL_DEVICE_OPEN, HXL_SIM_FAIL_GETINFO_EXT}) {
    Gpu gpu(harness::full_chip(6).chip_id, failure);
    gpu->isSecureContextSupportedByGpu();
    gpu.take_calls();
    gpu.take_messages();
    hxl_sim_set_failures(0);
    EXPECT_NUMBER(gpu->get_gpu_pixel_alignment(), 64);
    EXPECT_THAT(gpu.take_calls(), ElementsAreArray(kWholeQuery));
    EXPECT_THAT(gpu.take_messages(), IsEmpty());
  }
}

TEST(SecureContext, AsksAlsoAfterTheIdentification) {
  Gpu gpu(harness::full_chip(6).chip_id);
  gpu->get_gpu_pixel_alignment();
  gpu.take_calls();
  hxl_sim_set_secure_context(3);
  EXPECT_NUMBER(gpu->isSecureContextSupportedByGpu(), 3);
  EXPECT_THAT(gpu.take_calls(), ElementsAreArray(kSecureContextQuery));
}

}  // namespace
}  // namespace identify_test
