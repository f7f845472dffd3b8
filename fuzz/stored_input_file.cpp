#include "fuzz/stored_input_file.h"

#include <sys/mman.h>
#include <unistd.h>

#include "fuzz/broken_property.h"
#include "fuzz/record_edits.h"

namespace fuzz {
namespace {

int new_file_in_memory() {
  const int file = memfd_create("stored record", MFD_CLOEXEC);
  REQUIRE(file >= 0);
  return file;
}

int file_in_memory(FileSlot slot) {
  static const int files[] = {new_file_in_memory(), new_file_in_memory()};
  return files[static_cast<std::size_t>(slot)];
}

template <typename Record>
std::vector<uint8_t> bytes_of(const Record& record) {
  const auto* first = reinterpret_cast<const uint8_t*>(&record);
  return {first, first + sizeof record};
}

// The words in front of a blob's record: right ones, unless the input says otherwise.
MetadataHeader draw_blob_header(InputBytes& input) {
  MetadataHeader header = {KORVEL_HEADER_MAGIC,    KORVEL_HEADER_VERSION,
                           KORVEL_BLOB_BYTES,      KORVEL_HEADER_RECORD_KIND,
                           sizeof(MetadataHeader), KORVEL_LAYOUT_BYTES_VERSION_3};
  switch (input.u8()) {
    case 1: header.magic = input.u32(); break;
    case 2: header.header_version = input.u32(); break;
    case 3: header.blob_size = input.u32(); break;
    case 4: header.record_kind = input.u32(); break;
    case 5: header.record_offset = input.u8(); break;
    case 6: header.record_offset = input.u32(); break;
    case 7: header.record_size = input.u32(); break;
    default: break;
  }
  return header;
}

std::vector<uint8_t> draw_blob(InputBytes& input) {
  std::vector<uint8_t> blob = bytes_of(draw_blob_header(input));
  const std::vector<uint8_t> record = bytes_of(draw_edited_record<ResourceKind>(input));
  blob.insert(blob.end(), record.begin(), record.end());
  return blob;
}

// Sizes that the tool knows, and others around them.
std::size_t draw_size(InputBytes& input, std::size_t usual) {
  constexpr std::size_t kSizes[] = {0,    4,    5299, 5300, 5301, 5471, 5472, 5473,
                                    5503, 5504, 5511, 5512, 5513, 5535, 5536, 5537};
  const uint8_t drawn = input.u8();
  return drawn < 0xC0 ? usual : kSizes[drawn % std::size(kSizes)];
}

}  // namespace

std::vector<uint8_t> draw_record_file(InputBytes& input) {
  enum : uint8_t { kBlob, kResource, kSurface, kRaw };
  const uint8_t what = input.u8() % 4;
  if (what == kRaw) {
    const std::span<const uint8_t> rest = input.rest();
    return {rest.begin(), rest.end()};
  }
  // The size is drawn first: edits take all that is left.
  const std::size_t usual = what == kBlob       ? KORVEL_BLOB_BYTES
                            : what == kResource ? KORVEL_LAYOUT_BYTES_VERSION_3
                                                : KORVEL_SURFACE_BYTES;
  const std::size_t size = draw_size(input, usual);
  std::vector<uint8_t> bytes = what == kBlob ? draw_blob(input)
                               : what == kResource
                                   ? bytes_of(draw_edited_record<ResourceKind>(input))
                                   : bytes_of(draw_edited_record<SurfaceKind>(input));
  bytes.resize(size);
  return bytes;
}

StoredInputFile store_file(std::vector<uint8_t> bytes, FileSlot slot) {
  StoredInputFile file;
  file.bytes = std::move(bytes);
  file.slot = slot;
  const int descriptor = file_in_memory(slot);
  const auto size = static_cast<ssize_t>(file.bytes.size());
  REQUIRE(ftruncate(descriptor, 0) == 0);
  REQUIRE(pwrite(descriptor, file.bytes.data(), file.bytes.size(), 0) == size);
  file.path = "/proc/self/fd/" + std::to_string(descriptor);
  return file;
}

std::vector<uint8_t> stored_bytes(const StoredInputFile& file) {
  std::vector<uint8_t> bytes(file.bytes.size() + 1);
  const ssize_t size = pread(file_in_memory(file.slot), bytes.data(), bytes.size(), 0);
  REQUIRE(size >= 0);
  bytes.resize(static_cast<std::size_t>(size));
  return bytes;
}

}  // namespace fuzz
