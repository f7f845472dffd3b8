// Where the code of a loaded library lies in this process.
#pragma once

#include <cstdint>

namespace bench {

struct AddressRange {
  uintptr_t begin = 0;
  uintptr_t end = 0;  // the first address behind it
};

// The image, of an ELF file, that holds the address. Ends the program where there is none.
AddressRange elf_image_of(const void* address);

}  // namespace bench
