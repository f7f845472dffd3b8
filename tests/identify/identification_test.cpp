// How the library learns its GPU: what it asks the services, what it reports, what it remembers.

#include <gmock/gmock.h>

#include <algorithm>
#include <cstring>
#include <iterator>

#include "tests/harness/chips.h"
#include "tests/harness/fault_trap.h"
#include "tests/harness/gpu.h"
#include "tests/identify/gpu_entries.h"

namespace identify_test {
namespace {

using harness::Gpu;
using harness::message;
using harness::Message;
using testing::ElementsAreArray;
using testing::IsEmpty;

constexpr uint32_t kNotIdentified = 0xFFFFFFFF;
constexpr uint32_t kFailed = 0xFFFFFFFF;  // the status of a failure

uint32_t known_chip() {
  return harness::full_chip(6).chip_id;
}

std::vector<Message> library_open_messages() {
  return joined({message("ReadGpuID_from_khxl", "Failed to open HXL Library!!!!")},
                harness::unknown_chip_messages(kNotIdentified));
}

void expect_silent_and_known(Gpu& gpu, const GpuEntry& entry) {
  SCOPED_TRACE(entry.name);
  entry.call(gpu.library());
  EXPECT_THAT(gpu.take_calls(), IsEmpty());
  EXPECT_THAT(gpu.take_messages(), IsEmpty());
}

// The chip has no row and that has been reported: only the entry's own messages remain.
void expect_known_as_unknown(Gpu& gpu, const GpuEntry& entry, uint32_t chip_id) {
  SCOPED_TRACE(entry.name);
  entry.call(gpu.library());
  EXPECT_THAT(gpu.take_calls(), IsEmpty());
  EXPECT_THAT(gpu.take_messages(), ElementsAreArray(own_messages(entry, chip_id)));
}

// One call of an entry that asks for the GPU `questions` times: what each question brings, and then
// the entry's own messages.
void expect_questions(Gpu& gpu, const GpuEntry& entry, int questions, uint32_t chip_id,
                      const std::vector<std::string>& calls, const std::vector<Message>& messages) {
  SCOPED_TRACE(entry.name);
  entry.call(gpu.library());
  EXPECT_THAT(gpu.take_calls(), ElementsAreArray(repeated(questions, calls)));
  EXPECT_THAT(gpu.take_messages(), ElementsAreArray(joined(repeated(questions, messages),
                                                           own_messages(entry, chip_id))));
}

// One call of an entry that has to identify the GPU and finds no row for the chip.
void expect_unknown_chip_found(Gpu& gpu, const GpuEntry& entry, uint32_t chip_id,
                               const std::vector<std::string>& calls) {
  expect_questions(gpu, entry, 1, chip_id, calls, harness::unknown_chip_messages(chip_id));
}

// The device answers with the number that means "not identified yet".
void expect_unidentified_chip_found(Gpu& gpu, const GpuEntry& entry) {
  expect_questions(gpu, entry, entry.questions, kNotIdentified, kWholeQuery,
                   harness::unknown_chip_messages(kNotIdentified));
}

void expect_library_missing(Gpu& gpu, const GpuEntry& entry) {
  expect_questions(gpu, entry, entry.questions, kNotIdentified, kQueryWithoutLibrary,
                   library_open_messages());
}

void expect_identified_now(Gpu& gpu, const GpuEntry& entry) {
  SCOPED_TRACE(entry.name);
  entry.call(gpu.library());
  EXPECT_THAT(gpu.take_calls(), ElementsAreArray(kWholeQuery));
  EXPECT_THAT(gpu.take_messages(), IsEmpty());
}

TEST(Identification, LoadingTheLibraryAsksNothing) {
  Gpu gpu(known_chip());
  EXPECT_THAT(gpu.take_calls(), IsEmpty());
  EXPECT_THAT(gpu.take_messages(), IsEmpty());
}

TEST(Identification, FirstCallOfEveryEntryQueriesTheDeviceOnce) {
  for (const GpuEntry& first : gpu_entries()) {
    Gpu gpu(known_chip());
    expect_identified_now(gpu, first);
  }
}

TEST(Identification, NoEntryQueriesTheDeviceAgain) {
  for (const GpuEntry& first : gpu_entries()) {
    SCOPED_TRACE(first.name);
    Gpu gpu(known_chip());
    expect_identified_now(gpu, first);
    // The identity stays: neither a failing library nor another chip is noticed.
    hxl_sim_set_failures(HXL_SIM_FAIL_LIBRARY_OPEN);
    hxl_sim_set_chip(harness::kUnknownChip);
    for (const GpuEntry& later : gpu_entries()) expect_silent_and_known(gpu, later);
  }
}

TEST(Identification, FailedLibraryOpenIsRetriedOnEveryCall) {
  for (const GpuEntry& first : gpu_entries()) {
    SCOPED_TRACE(first.name);
    Gpu gpu(known_chip(), HXL_SIM_FAIL_LIBRARY_OPEN);
    expect_library_missing(gpu, first);
    expect_library_missing(gpu, first);
    for (const GpuEntry& later : gpu_entries()) expect_library_missing(gpu, later);
  }
}

TEST(Identification, SucceedsOnceTheLibraryOpens) {
  for (const GpuEntry& first : gpu_entries()) {
    SCOPED_TRACE(first.name);
    Gpu gpu(known_chip(), HXL_SIM_FAIL_LIBRARY_OPEN);
    expect_library_missing(gpu, first);
    hxl_sim_set_failures(0);
    expect_identified_now(gpu, first);
    hxl_sim_set_failures(HXL_SIM_FAIL_LIBRARY_OPEN);
    expect_silent_and_known(gpu, first);
  }
}

TEST(Identification, CallsWithoutTheLibraryGetTheValuesOfAnUnknownChip) {
  Gpu gpu(known_chip(), HXL_SIM_FAIL_LIBRARY_OPEN);
  EXPECT_NUMBER(gpu->get_gpu_pixel_alignment(), 1);
  EXPECT_NUMBER(gpu->get_slice_pitch_alignment(kTiled), 0);
  EXPECT_NUMBER(formats_test::renderable(gpu, {.format = kRgba8}), 0);
  EXPECT_NUMBER(formats_test::sampleable(gpu, {.format = kRgba8}), 0);
  EXPECT_NUMBER(gpu->isUBWCSupportedByGpu(kRgba8), 0);
  EXPECT_NUMBER(align_test::surface_padding(gpu.library(), {.width_px = 100}), 100);
  hxl_sim_set_failures(0);
  EXPECT_NUMBER(gpu->get_gpu_pixel_alignment(), 64);
  EXPECT_NUMBER(gpu->get_slice_pitch_alignment(kTiled), 4096);
  EXPECT_NUMBER(formats_test::renderable(gpu, {.format = kRgba8}), 1);
  EXPECT_NUMBER(formats_test::sampleable(gpu, {.format = kRgba8}), 1);
  EXPECT_NUMBER(gpu->isUBWCSupportedByGpu(kRgba8), 1);
  EXPECT_NUMBER(align_test::surface_padding(gpu.library(), {.width_px = 100}), 0);
}

TEST(Identification, DeviceThatDoesNotOpenIsNotClosedAndNeverAskedAgain) {
  for (const GpuEntry& first : gpu_entries()) {
    SCOPED_TRACE(first.name);
    Gpu gpu(known_chip(), HXL_SIM_FAIL_DEVICE_OPEN);
    expect_unknown_chip_found(gpu, first, 0, kQueryWithoutDevice);
    hxl_sim_set_failures(0);
    for (const GpuEntry& later : gpu_entries()) expect_known_as_unknown(gpu, later, 0);
  }
}

TEST(Identification, DeviceThatDoesNotAnswerIsClosedAndNeverAskedAgain) {
  for (const GpuEntry& first : gpu_entries()) {
    SCOPED_TRACE(first.name);
    Gpu gpu(known_chip(), HXL_SIM_FAIL_GETINFO);
    expect_unknown_chip_found(gpu, first, 0, kWholeQuery);
    hxl_sim_set_failures(0);
    for (const GpuEntry& later : gpu_entries()) expect_known_as_unknown(gpu, later, 0);
  }
}

TEST(Identification, FailedQueryGivesTheDefaultsForGood) {
  for (const uint32_t failure : {HXL_SIM_FAIL_DEVICE_OPEN, HXL_SIM_FAIL_GETINFO}) {
    Gpu gpu(known_chip(), failure);
    EXPECT_NUMBER(gpu->get_gpu_pixel_alignment(), 1);
    hxl_sim_set_failures(0);
    EXPECT_NUMBER(gpu->get_gpu_pixel_alignment(), 1);
    EXPECT_NUMBER(gpu->get_slice_pitch_alignment(kTiled), 0);
    EXPECT_NUMBER(gpu->isUBWCSupportedByGpu(kRgba8), 0);
  }
}

TEST(Identification, UnknownChipIsReportedOnce) {
  for (const GpuEntry& first : gpu_entries()) {
    SCOPED_TRACE(first.name);
    Gpu gpu(harness::kUnknownChip);
    expect_unknown_chip_found(gpu, first, harness::kUnknownChip, kWholeQuery);
    for (const GpuEntry& later : gpu_entries()) {
      expect_known_as_unknown(gpu, later, harness::kUnknownChip);
    }
  }
}

TEST(Identification, ChipIdsArePrintedUnsignedByTheIdentificationAndSignedByTheEntries) {
  for (const uint32_t chip_id : {0x80000000U, 0xFFFFFFFEU, 0x7FFFFFFFU, 1U}) {
    for (const GpuEntry& first : gpu_entries()) {
      Gpu gpu(chip_id);
      expect_unknown_chip_found(gpu, first, chip_id, kWholeQuery);
    }
  }
  Gpu gpu(0x80000000U);
  align_test::surface_padding(gpu.library(), {.width_px = 1});
  const std::vector<Message> messages = gpu.take_messages();
  ASSERT_EQ(messages.size(), 4U);
  EXPECT_EQ(messages[0].text, "Unknown HXL chip ID 2147483648");
  EXPECT_EQ(messages[0].format, "Unknown HXL chip ID %u");
  EXPECT_EQ(messages[3].text, "Unknown Chip ID -2147483648");
  EXPECT_EQ(messages[3].format, "Unknown Chip ID %d");
}

TEST(Identification, DeviceThatReportsChipZeroIsNotAskedAgain) {
  Gpu gpu(0);
  expect_unknown_chip_found(gpu, gpu_entries().front(), 0, kWholeQuery);
  hxl_sim_set_chip(known_chip());
  for (const GpuEntry& later : gpu_entries()) expect_known_as_unknown(gpu, later, 0);
}

// That number means "not identified yet", whoever says it.
TEST(Identification, DeviceThatReportsTheUnidentifiedChipIdIsAskedAgain) {
  for (const GpuEntry& entry : gpu_entries()) {
    SCOPED_TRACE(entry.name);
    Gpu gpu(kNotIdentified);
    expect_unidentified_chip_found(gpu, entry);
    expect_unidentified_chip_found(gpu, entry);
    hxl_sim_set_chip(known_chip());
    expect_identified_now(gpu, entry);
    expect_silent_and_known(gpu, entry);
  }
}

// Its two properties ask one after the other, in every mode. The division by 0 of the linear modes
// on a chip without properties comes after both.
// A machine whose chip stays unidentified, and what each attempt leaves.
struct Unidentified {
  uint32_t chip_id;
  uint32_t failures;
  std::vector<std::string> calls;
  std::vector<Message> messages;
};

std::vector<Unidentified> unidentified_machines() {
  return {
      {known_chip(), HXL_SIM_FAIL_LIBRARY_OPEN, kQueryWithoutLibrary, library_open_messages()},
      {kNotIdentified, 0, kWholeQuery, harness::unknown_chip_messages(kNotIdentified)},
  };
}

void expect_asked_twice(Gpu& gpu, const Unidentified& machine) {
  EXPECT_THAT(gpu.take_calls(), ElementsAreArray(repeated(2, machine.calls)));
  EXPECT_THAT(gpu.take_messages(), ElementsAreArray(repeated(2, machine.messages)));
}

TEST(Identification, SlicePitchAlignmentAsksForEachOfItsTwoProperties) {
  for (const Unidentified& machine : unidentified_machines()) {
    Gpu gpu(machine.chip_id, machine.failures);
    // Tiled alignment 1, base alignment 0: 1 x 0 / 1.
    EXPECT_EQ(gpu->get_slice_pitch_alignment(1), 0U);
    expect_asked_twice(gpu, machine);
  }
}

// Linear alignment 0, base alignment 0: 0 / 0.
TEST(IdentificationBeforeAFault, SlicePitchAlignmentAsksForEachOfItsTwoProperties) {
  for (const Unidentified& machine : unidentified_machines()) {
    Gpu gpu(machine.chip_id, machine.failures);
    harness::FaultTrap trap;
    for (const uint32_t tiling_mode : {0U, 2U}) {
      SCOPED_TRACE(tiling_mode);
      EXPECT_FALSE(trap.answers([&] { gpu->get_slice_pitch_alignment(tiling_mode); }));
      expect_asked_twice(gpu, machine);
    }
  }
}

TEST(Identification, FailuresInSequenceEndWithTheFirstAnswer) {
  const GpuEntry& entry = gpu_entries().front();
  Gpu gpu(known_chip(), HXL_SIM_FAIL_LIBRARY_OPEN);
  expect_library_missing(gpu, entry);
  hxl_sim_set_failures(0);
  hxl_sim_set_chip(kNotIdentified);
  expect_unidentified_chip_found(gpu, entry);
  hxl_sim_set_failures(HXL_SIM_FAIL_GETINFO);
  expect_unknown_chip_found(gpu, entry, 0, kWholeQuery);
  hxl_sim_set_failures(0);
  hxl_sim_set_chip(known_chip());
  expect_known_as_unknown(gpu, entry, 0);
}

struct DeviceWords {
  uint32_t word[4];
};

// What a layout says about the device that it was made for.
DeviceWords device_of_layout(Gpu& gpu) {
  LayoutMetadata blob{};
  EXPECT_NUMBER(init_layout(gpu.library(), &blob, {}), 0);
  DeviceWords device;
  std::memcpy(device.word, blob.layout.device_uuid, sizeof device.word);
  return device;
}

TEST(Identification, EveryChipHasItsFamilyModelAndRevision) {
  for (const harness::ChipData& chip : korvel::kChipData) {
    SCOPED_TRACE(chip.chip_id);
    Gpu gpu(chip.chip_id);
    const DeviceWords device = device_of_layout(gpu);
    EXPECT_NUMBER(device.word[1], chip.family_id);
    EXPECT_NUMBER(device.word[2], chip.model_code);
    EXPECT_NUMBER(device.word[3], chip.rev_id);
    EXPECT_THAT(gpu.take_calls(), ElementsAreArray(kWholeQuery));
  }
}

bool has_row(uint32_t chip_id) {
  return std::any_of(std::begin(korvel::kChipData), std::end(korvel::kChipData),
                     [chip_id](const harness::ChipData& chip) { return chip.chip_id == chip_id; });
}

TEST(Identification, IdsBesideTheKnownOnesAreUnknown) {
  for (const harness::ChipData& chip : korvel::kChipData) {
    for (const uint32_t beside : {chip.chip_id - 1, chip.chip_id + 1, chip.chip_id - 16,
                                  chip.chip_id + 16, chip.chip_id | 0x80000000U}) {
      if (has_row(beside)) continue;
      SCOPED_TRACE(beside);
      Gpu gpu(beside);
      const DeviceWords device = device_of_layout(gpu);
      EXPECT_NUMBER(device.word[1], 0);
      EXPECT_NUMBER(device.word[2], 0);
      EXPECT_NUMBER(device.word[3], 0);
      EXPECT_EQ(gpu.take_messages().size(), 4U);  // three steps and the alignment entry
    }
  }
}

TEST(Identification, ComesBeforeTheChecksOfTheArguments) {
  const auto asks = [](const char* what, auto call) {
    SCOPED_TRACE(what);
    Gpu gpu(known_chip());
    call(gpu.library());
    EXPECT_THAT(gpu.take_calls(), ElementsAreArray(kWholeQuery));
  };
  using Lib = harness::Library;
  asks("negative width", [](const Lib& library) { align_test::basic(library, {.width_px = -1}); });
  asks("negative width, full",
       [](const Lib& library) { align_test::full(library, kNegativeWidth); });
  asks("negative width, minimal",
       [](const Lib& library) { align_test::minimal(library, kNegativeWidth); });
  asks("negative width, fdm", [](const Lib& library) { align_test::fdm(library, kNegativeWidth); });
  asks("layout of no width", [](const Lib& library) {
    LayoutMetadata blob{};
    EXPECT_NUMBER(init_layout(library, &blob, {.width_px = 0}), kFailed);
  });
  asks("layout without a blob",
       [](const Lib& library) { EXPECT_NUMBER(init_layout(library, nullptr, {}), kFailed); });
  asks("single-level surface of no level", [](const Lib& library) {
    MemoryLayout record{};
    init_single_level(library, record, {});
  });
  asks("mip chain of no plane", [](const Lib& library) {
    MemoryLayout record{};
    record.levels = 1;
    init_multi_level(library, record, {.planes = 0});
  });
  asks("unknown formats", [](const Lib& library) {
    EXPECT_NUMBER(formats_test::renderable(library, {.format = -1}), 0);
    EXPECT_NUMBER(formats_test::sampleable(library, {.format = -1}), 0);
    EXPECT_NUMBER(library.isUBWCSupportedByGpu(0xFFFFFFFF), 0);
  });
}

TEST(Identification, EntriesThatDoNotDependOnTheGpuNeverAskForIt) {
  Gpu gpu(known_chip());
  uint8_t uuid[16];
  constexpr uint32_t kFamily = 6;
  constexpr uint32_t kModelCode = 1;
  constexpr uint32_t kRevision = 2;
  constexpr uint16_t kWord0 = 3;
  EXPECT_EQ(gpu->get_device_uuid(uuid, sizeof uuid, kFamily, kModelCode, kRevision), 0);
  EXPECT_EQ(
      gpu->get_override_device_uuid(uuid, sizeof uuid, kFamily, kModelCode, kRevision, kWord0), 0);
  EXPECT_EQ(gpu->get_driver_uuid(uuid, sizeof uuid), 0);
  char text[37];
  EXPECT_EQ(gpu->uuid_to_str(text, sizeof text, uuid, sizeof uuid), 0);
  // A header of 24 bytes and a record of 5512.
  EXPECT_NUMBER(gpu->korvel_get_metadata_blob_size(), 5536);
  const LayoutMetadata blob{};
  EXPECT_EQ(gpu->korvel_get_aligned_gpu_buffer_size(&blob), 0U);
  const MemoryLayout record{};
  EXPECT_EQ(gpu->validate_resource_memory_layout_metadata(&record, uuid, uuid), kFailed);
  const SurfaceMetadata surface{};
  EXPECT_EQ(gpu->validate_surface_metadata(&surface, uuid, uuid), kFailed);
  EXPECT_THAT(gpu.take_calls(), IsEmpty());
}

}  // namespace
}  // namespace identify_test
