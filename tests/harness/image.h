// A Windows DLL or program in this Linux process: mapped, moved, bound to what it imports,
// protected.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <vector>

#include "tests/harness/image_format.h"

namespace harness {

// Whether the file is one of Windows and not an ELF file.
bool is_image(const char* path);

// Where the function of a DLL begins that an image imports; 0 where there is none.
using ImportSource = std::function<uintptr_t(const std::string& dll, const std::string& function)>;

// The services alone, by the simulator's operations.
uintptr_t imported_service(const std::string& dll, const std::string& function);

// Ends the test program where the file is none for this machine's instructions, asks for something
// that a loader of the system would refuse, or imports what `imports` does not have.
class Image {
 public:
  explicit Image(const char* path, ImportSource imports = imported_service);
  ~Image();
  Image(const Image&) = delete;
  Image& operator=(const Image&) = delete;

  // Where an export begins. It has the Windows calling convention.
  uintptr_t export_address(const char* name) const;
  // Where a program begins. It has that convention too.
  uintptr_t entry_address() const;
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
  ImportSource imports_;
  std::vector<char> file_;
  ImageHeader header_{};
  uint32_t section_headers_ = 0;  // file offset

  void* reserved_ = nullptr;
  std::size_t reserved_size_ = 0;
  char* base_ = nullptr;
};

}  // namespace harness
