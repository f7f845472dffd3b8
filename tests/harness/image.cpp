#include "tests/harness/image.h"

#include <strings.h>
#include <sys/auxv.h>
#include <sys/mman.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <utility>

#include "tests/harness/windows_services.h"

namespace harness {

namespace {

#if defined(__x86_64__)
constexpr uint16_t kMachine = kMachineX64;
#elif defined(__aarch64__)
constexpr uint16_t kMachine = kMachineArm64;
#else
constexpr uint16_t kMachine = 0;  // no DLL is made for this machine
#endif

constexpr uintptr_t kPageBytes = 4096;
constexpr uintptr_t kBaseAlignment = 0x10000;  // the system maps images at multiples of 64 KB

constexpr uintptr_t round_up(uintptr_t value, uintptr_t step) {
  return (value + step - 1) / step * step;
}

int page_access(uint32_t characteristics) {
  int access = PROT_NONE;
  if ((characteristics & kSectionReadable) != 0) access |= PROT_READ;
  if ((characteristics & kSectionWritable) != 0) access |= PROT_WRITE;
  if ((characteristics & kSectionExecutable) != 0) {
    access |= PROT_EXEC;
#if defined(__aarch64__)
    // Where the processor can, it lets calls arrive at landing pads alone.
    if ((getauxval(AT_HWCAP2) & HWCAP2_BTI) != 0) access |= PROT_BTI;
#endif
  }
  return access;
}

}  // namespace

bool is_image(const char* path) {
  std::ifstream file(path, std::ios::binary);
  uint16_t magic = 0;
  file.read(reinterpret_cast<char*>(&magic), sizeof magic);
  return file.good() && magic == kDosMagic;
}

uintptr_t imported_service(const std::string& dll, const std::string& function) {
  // File names are compared as the system does, without regard to case.
  return strcasecmp(dll.c_str(), kServicesDll) == 0 ? windows_service(function) : 0;
}

Image::Image(const char* path, ImportSource imports) : path_(path), imports_(std::move(imports)) {
  read(path);
  map();
  relocate();
  bind_imports();
  protect();
}

Image::~Image() {
  munmap(reserved_, reserved_size_);
}

void Image::refuse(const char* why) const {
  std::fprintf(stderr, "cannot load %s: %s\n", path_.c_str(), why);
  std::abort();
}

void Image::read(const char* path) {
  std::ifstream file(path, std::ios::binary);
  file_.assign(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
  uint32_t header_offset = 0;
  if (file_.size() < kDosHeaderOffset + sizeof header_offset) refuse("too short");
  std::memcpy(&header_offset, file_.data() + kDosHeaderOffset, sizeof header_offset);
  if (file_.size() < sizeof header_ || header_offset > file_.size() - sizeof header_) {
    refuse("too short");
  }
  std::memcpy(&header_, file_.data() + header_offset, sizeof header_);
  if (header_.signature != kImageSignature || header_.optional_magic != kOptionalHeader64 ||
      header_.directory_count != kDirectories) {
    refuse("no 64-bit image");
  }
  if (header_.machine != kMachine) refuse("for another machine");
  if (header_.section_alignment % kPageBytes != 0) refuse("sections that share pages");
  section_headers_ = header_offset + kOptionalHeaderOffset + header_.optional_header_size;
  if (section_headers_ + header_.section_count * sizeof(SectionHeader) > header_.headers_size ||
      header_.headers_size > file_.size()) {
    refuse("headers beyond the file's end");
  }
}

SectionHeader Image::section(uint32_t index) const {
  SectionHeader section;
  std::memcpy(&section, file_.data() + section_headers_ + index * sizeof section, sizeof section);
  return section;
}

void Image::map() {
  reserved_size_ = header_.image_size + kBaseAlignment;
  reserved_ =
      mmap(nullptr, reserved_size_, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (reserved_ == MAP_FAILED) refuse("no memory");
  const uintptr_t start = reinterpret_cast<uintptr_t>(reserved_);
  base_ = static_cast<char*>(reserved_) + (round_up(start, kBaseAlignment) - start);
  // A load at the preferred base would leave the relocations untried.
  if (reinterpret_cast<uintptr_t>(base_) == header_.preferred_base) refuse("at its preferred base");

  std::memcpy(base_, file_.data(), header_.headers_size);
  for (uint32_t i = 0; i < header_.section_count; ++i) {
    const SectionHeader from = section(i);
    // What the file has beyond the section's size is padding; what it lacks is zero.
    const std::size_t size = std::min(from.size, from.file_size);
    if (from.file_offset > file_.size() || size > file_.size() - from.file_offset ||
        from.address > header_.image_size || from.size > header_.image_size - from.address) {
      refuse("a section beyond the end");
    }
    std::memcpy(base_ + from.address, file_.data() + from.file_offset, size);
  }
}

template <typename Record>
Record Image::at(uint32_t address) const {
  if (address > header_.image_size || sizeof(Record) > header_.image_size - address) {
    refuse("an address beyond the end");
  }
  Record record;
  std::memcpy(&record, base_ + address, sizeof record);
  return record;
}

template <typename Record>
void Image::put(uint32_t address, Record record) {
  at<Record>(address);  // within the image
  std::memcpy(base_ + address, &record, sizeof record);
}

std::string Image::text_at(uint32_t address) const {
  std::string text;
  for (char c = at<char>(address); c != '\0'; c = at<char>(++address)) text.push_back(c);
  return text;
}

void Image::relocate() {
  const uint64_t moved_by = reinterpret_cast<uintptr_t>(base_) - header_.preferred_base;
  const DirectoryEntry relocations = header_.directory[kRelocations];
  if (relocations.size == 0) refuse("cannot be moved");
  uint32_t offset = 0;
  while (offset < relocations.size) {
    const auto block = at<RelocationBlock>(relocations.address + offset);
    if (block.size < sizeof block) refuse("a relocation block without a size");
    for (uint32_t in_block = sizeof block; in_block < block.size; in_block += sizeof(uint16_t)) {
      const auto entry = at<uint16_t>(relocations.address + offset + in_block);
      const uint32_t address = block.page_address + (entry & 0xFFFU);
      switch (entry >> 12) {
        case kRelocationNone: break;
        case kRelocationAddress64: put(address, at<uint64_t>(address) + moved_by); break;
        default: refuse("a relocation of a kind that no 64-bit image needs");
      }
    }
    offset += block.size;
  }
}

void Image::bind_imports() {
  if (header_.directory[kImports].size == 0) return;
  uint32_t address = header_.directory[kImports].address;
  for (;;) {
    const auto descriptor = at<ImportDescriptor>(address);
    if (descriptor.address_table_address == 0) return;
    bind_import(descriptor);
    address += static_cast<uint32_t>(sizeof descriptor);
  }
}

void Image::bind_import(const ImportDescriptor& descriptor) {
  const std::string dll = text_at(descriptor.dll_name_address);
  for (uint32_t slot = 0;; slot += static_cast<uint32_t>(sizeof(uint64_t))) {
    const auto import = at<uint64_t>(descriptor.lookup_table_address + slot);
    if (import == 0) return;
    if ((import & kImportByOrdinal) != 0) refuse("an import by number");
    const std::string name = text_at(static_cast<uint32_t>(import) + kImportNameOffset);
    const uintptr_t function = imports_(dll, name);
    if (function == 0)
      refuse(("it imports " + name + " of " + dll + ", which is not there").c_str());
    put<uint64_t>(descriptor.address_table_address + slot, function);
  }
}

void Image::protect() {
  bool kept = mprotect(base_, round_up(header_.headers_size, kPageBytes), PROT_READ) == 0;
  for (uint32_t i = 0; i < header_.section_count; ++i) {
    const SectionHeader of = section(i);
    kept = kept && mprotect(base_ + of.address, round_up(of.size, kPageBytes),
                            page_access(of.characteristics)) == 0;
  }
  if (!kept) refuse("its pages cannot be protected");
  __builtin___clear_cache(base_, base_ + header_.image_size);
}

uintptr_t Image::export_address(const char* name) const {
  const DirectoryEntry exports = header_.directory[kExports];
  const auto directory = at<ExportDirectory>(exports.address);
  for (uint32_t i = 0; i < directory.name_count; ++i) {
    if (text_at(at<uint32_t>(directory.name_addresses + i * 4)) != name) continue;
    const auto index = at<uint16_t>(directory.name_indices + i * 2);
    const auto address = at<uint32_t>(directory.function_addresses + index * 4U);
    if (address - exports.address < exports.size) refuse("an export of another DLL's function");
    return reinterpret_cast<uintptr_t>(base_ + address);
  }
  refuse((std::string("no export ") + name).c_str());
}

uintptr_t Image::entry_address() const {
  if (header_.entry_address == 0) refuse("no program");
  return reinterpret_cast<uintptr_t>(base_ + header_.entry_address);
}

}  // namespace harness
