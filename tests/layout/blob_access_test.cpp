// The size of a blob, and the allocation size that one names.
#include "tests/harness/chips.h"
#include "tests/harness/gpu.h"
#include "tests/layout/same_record.h"

namespace layout_test {
namespace {

TEST(BlobAccess, ABlobHas5536Bytes) {
  harness::Gpu gpu(harness::kUnknownChip);
  EXPECT_NUMBER(gpu->korvel_get_metadata_blob_size(), 5536);
  EXPECT_TRUE(gpu.take_calls().empty());  // no GPU is asked
  EXPECT_TRUE(gpu.take_messages().empty());
}

TEST(BlobAccess, TheAllocationIsTheTotalLessTheRecord) {
  struct Row {
    uint64_t total_size;
    uint32_t size;
    uint64_t allocation_bytes;
  };
  constexpr Row kRows[] = {
      {.total_size = 5512, .size = 5512, .allocation_bytes = 0},
      {.total_size = 5512 + 4096, .size = 5512, .allocation_bytes = 4096},
      {.total_size = 5472 + 64, .size = 5472, .allocation_bytes = 64},
      {.total_size = 5512 + 0x100000000, .size = 5512, .allocation_bytes = 0x100000000},
      {.total_size = 0x123456789ABCDEF0,
       .size = 0x9ABCDEF0,
       .allocation_bytes = 0x1234567800000000},
      // It wraps,
      {.total_size = 0, .size = 1, .allocation_bytes = 0xFFFFFFFFFFFFFFFF},
      // and the size is not signed.
      {.total_size = 0xFFFFFFFFFFFFFFFF,
       .size = 0xFFFFFFFF,
       .allocation_bytes = 0xFFFFFFFF00000000},
  };
  harness::Gpu gpu(harness::kUnknownChip);
  for (const Row& row : kRows) {
    LayoutMetadata blob = canary<LayoutMetadata>();
    blob.header.record_offset = 24;
    blob.layout.total_size = row.total_size;
    blob.layout.size = row.size;
    EXPECT_NUMBER(gpu->korvel_get_aligned_gpu_buffer_size(&blob), row.allocation_bytes);
  }
  EXPECT_TRUE(gpu.take_calls().empty());
  EXPECT_TRUE(gpu.take_messages().empty());
}

TEST(BlobAccess, NoBlobNeedsNoBytes) {
  const harness::Gpu gpu(harness::kUnknownChip);
  EXPECT_NUMBER(gpu->korvel_get_aligned_gpu_buffer_size(nullptr), 0);
}

TEST(BlobAccess, TheRecordIsWhereTheHeaderSays) {
  const harness::Gpu gpu(harness::kUnknownChip);
  const uint32_t size = 5512;
  const uint64_t total = 5512 + 0x200001000;
  // Any offset, be it misaligned or inside the header; any alignment of the blob.
  for (const uint32_t offset : {20u, 24u, 25u, 40u, 99u}) {
    for (const uint32_t start : {0u, 1u, 2u, 4u, 7u}) {
      alignas(8) unsigned char buffer[256];
      std::memset(buffer, 0xEE, sizeof buffer);
      unsigned char* blob = buffer + start;
      std::memcpy(blob + 16, &offset, 4);
      std::memcpy(blob + offset + 4, &size, 4);
      std::memcpy(blob + offset + 40, &total, 8);
      EXPECT_NUMBER(gpu->korvel_get_aligned_gpu_buffer_size(blob), 0x200001000)
          << offset << ", " << start;
    }
  }
}

}  // namespace
}  // namespace layout_test
