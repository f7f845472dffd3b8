// The records of a 64-bit Windows image (PE32+), as far as loading one asks. All are little-endian.
//
// "Address" in a name is the format's relative virtual address: bytes from the image's base.
#pragma once

#include <cstdint>

namespace harness {

inline constexpr uint16_t kDosMagic = 0x5A4D;       // "MZ"
inline constexpr uint32_t kDosHeaderOffset = 0x3C;  // holds the file offset of ImageHeader

inline constexpr uint32_t kImageSignature = 0x00004550;  // "PE", 0, 0
inline constexpr uint16_t kMachineX64 = 0x8664;
inline constexpr uint16_t kMachineArm64 = 0xAA64;
inline constexpr uint16_t kOptionalHeader64 = 0x020B;

enum Directory : uint32_t { kExports = 0, kImports = 1, kRelocations = 5, kDirectories = 16 };

struct DirectoryEntry {
  uint32_t address;
  uint32_t size;
};

#pragma pack(push, 4)
struct ImageHeader {
  uint32_t signature;
  uint16_t machine;
  uint16_t section_count;
  uint32_t time_stamp;
  uint32_t unused_symbols[2];
  uint16_t optional_header_size;
  uint16_t characteristics;
  // The "optional" header, which every image has, begins here.
  uint16_t optional_magic;
  uint16_t linker_version;
  uint32_t sizes[3];
  uint32_t entry_address;
  uint32_t code_address;
  uint64_t preferred_base;
  uint32_t section_alignment;
  uint32_t file_alignment;
  uint32_t versions[4];
  uint32_t image_size;
  uint32_t headers_size;
  uint32_t checksum;
  uint16_t subsystem;
  uint16_t dll_characteristics;
  uint64_t stack_and_heap[4];
  uint32_t loader_flags;
  uint32_t directory_count;
  DirectoryEntry directory[kDirectories];
};
#pragma pack(pop)
static_assert(sizeof(ImageHeader) == 4 + 20 + 112 + 16 * 8);
inline constexpr uint32_t kOptionalHeaderOffset = 24;

inline constexpr uint32_t kSectionExecutable = 0x20000000;
inline constexpr uint32_t kSectionReadable = 0x40000000;
inline constexpr uint32_t kSectionWritable = 0x80000000;

struct SectionHeader {
  char name[8];
  uint32_t size;
  uint32_t address;
  uint32_t file_size;
  uint32_t file_offset;
  uint32_t unused[3];
  uint32_t characteristics;
};
static_assert(sizeof(SectionHeader) == 40);

struct ExportDirectory {
  uint32_t unused[3];
  uint32_t dll_name_address;
  uint32_t ordinal_base;
  uint32_t function_count;
  uint32_t name_count;
  uint32_t function_addresses;  // address of the functions' addresses, by index
  uint32_t name_addresses;      // address of the names' addresses
  uint32_t name_indices;        // address of each name's 16-bit index into the functions
};
static_assert(sizeof(ExportDirectory) == 40);

struct ImportDescriptor {
  uint32_t lookup_table_address;
  uint32_t unused[2];
  uint32_t dll_name_address;
  uint32_t address_table_address;  // what the loader fills; 0 in the descriptor that ends the list
};
static_assert(sizeof(ImportDescriptor) == 20);

inline constexpr uint64_t kImportByOrdinal = uint64_t{1} << 63;
inline constexpr uint32_t kImportNameOffset = 2;  // behind a hint

struct RelocationBlock {
  uint32_t page_address;
  uint32_t size;  // with its 16-bit entries: type in the upper 4 bits, offset in the page below
};
static_assert(sizeof(RelocationBlock) == 8);

inline constexpr uint32_t kRelocationNone = 0;
inline constexpr uint32_t kRelocationAddress64 = 10;

}  // namespace harness
