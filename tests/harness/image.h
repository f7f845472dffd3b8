// A Windows DLL in this Linux process: mapped, moved, bound to the simulator's operations,
// protected.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "tests/harness/image_format.h"

namespace harness {

// Whether the file is a DLL and not an ELF file.
bool is_image(const char* path);

// Ends the test program where the file is no DLL for this machine's instructions, asks for
// something that a loader of the system would refuse, or wants more than the services.
class Image {
 public:
  explicit Image(const char* path);
  ~Image();
  Image(const Image&) = delete;
  Image& operator=(const Image&) = delete;

  // Where an export begins. It has the Windows calling convention.
  uintptr_t export_address(const char* name) const;
  std::span<const char> bytes() const { return {base_, header_.image_size}; }

 private:
  void read(const char* path);
  void map();
  void relocate();
  void bind_imports();
  void bind_import(const ImportDescriptor& descriptor);
  void protect();

  SectionHeader section(uint32_t index) const;
  template <typename Record>
  Record at(uint32_t address) const;
  template <typename Record>
  void put(uint32_t address, Record record);
  std::string text_at(uint32_t address) const;
  [[noreturn]] void refuse(const char* why) const;

  std::string path_;
  std::vector<char> file_;
  ImageHeader header_{};
  uint32_t section_headers_ = 0;  // file offset

  void* reserved_ = nullptr;
  std::size_t reserved_size_ = 0;
  char* base_ = nullptr;
};

}  // namespace harness
