// The size of a blob, and the allocation size that one names.
#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>
#include <cstdlib>
#include <cstring>

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

// The header's page and those of a record that far behind it; nothing else can be read.
class FarRecord {
 public:
  explicit FarRecord(uint32_t offset_bytes) {
    // Reserved, not taken: up to 4 GiB of addresses.
    mapping_ =
        mmap(nullptr, kAddresses, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    if (mapping_ == MAP_FAILED) std::abort();
    make_readable(0, kHeaderBytes);
    make_readable(offset_bytes, kRecordBytes);
    std::memcpy(blob() + offsetof(MetadataHeader, record_offset), &offset_bytes, 4);
  }
  ~FarRecord() { munmap(mapping_, kAddresses); }
  FarRecord(const FarRecord&) = delete;
  FarRecord& operator=(const FarRecord&) = delete;

  unsigned char* blob() const { return static_cast<unsigned char*>(mapping_); }

 private:
  static constexpr std::size_t kAddresses = 0x100000000 + 0x20000;
  static constexpr std::size_t kHeaderBytes = 24;
  static constexpr std::size_t kRecordBytes = 48;  // up to the end of the total size

  void make_readable(std::size_t first_byte, std::size_t bytes) {
    const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    const std::size_t begin = first_byte / page * page;
    const std::size_t end = (first_byte + bytes + page - 1) / page * page;
    if (mprotect(blob() + begin, end - begin, PROT_READ | PROT_WRITE) != 0) std::abort();
  }

  void* mapping_;
};

TEST(BlobAccess, TheRecordsOffsetHasAll32Bits) {
  const harness::Gpu gpu(harness::kUnknownChip);
  const uint32_t size = 5512;
  const uint64_t total = 5512 + 0x200001000;
  for (const uint32_t offset : {0x7FFFu, 0x8000u, 0xFFFFu, 0x10000u, 0x10018u, 0x01234567u,
                                0x7FFFFFFFu, 0x80000000u, 0x80000018u, 0xFFFF0018u, 0xFFFFFFFFu}) {
    const FarRecord far(offset);
    std::memcpy(far.blob() + offset + 4, &size, 4);
    std::memcpy(far.blob() + offset + 40, &total, 8);
    EXPECT_NUMBER(gpu->korvel_get_aligned_gpu_buffer_size(far.blob()), 0x200001000) << offset;
  }
}

}  // namespace
}  // namespace layout_test
