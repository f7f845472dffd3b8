#include <gmock/gmock.h>

#include "tests/harness/chips.h"
#include "tests/harness/faults.h"
#include "tests/harness/gpu.h"

TEST(Smoke, Tiled) {
  harness::Gpu gpu(harness::full_chip(6).chip_id);
  LayoutMetadata blob{};
  EXPECT_EQ(gpu->korvel_init_memory_layout(&blob, 1920, 1080, 1, 28, 1, 1, LAYOUT_FLAG_UBWC, 1),
            0u);
  EXPECT_EQ(blob.layout.level[0].plane[0].image_pitch, 7680u);
  EXPECT_EQ(gpu->korvel_get_aligned_gpu_buffer_size(&blob), 8392704u);
  EXPECT_THAT(gpu.take_calls(),
              testing::ElementsAre("hxl_library_open(0)", "hxl_device_open(1, 0)",
                                   "hxl_device_getinfo(device)", "hxl_device_close(device)",
                                   "hxl_library_close()"));
}
TEST(Smoke, Fault) {
  EXPECT_DIVISION_FAULT({
    harness::Gpu gpu(harness::kUnknownChip);
    gpu->get_slice_pitch_alignment(0);
  });
}
