#include "bench/loaded_code.h"

#include <link.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace bench {
namespace {

struct Search {
  uintptr_t address;
  AddressRange found;
};

int look_into(dl_phdr_info* object, std::size_t, void* data) {
  auto& search = *static_cast<Search*>(data);
  AddressRange image{UINTPTR_MAX, 0};
  for (int i = 0; i < object->dlpi_phnum; ++i) {
    const auto& segment = object->dlpi_phdr[i];
    if (segment.p_type != PT_LOAD) continue;
    const uintptr_t begin = object->dlpi_addr + segment.p_vaddr;
    image.begin = std::min(image.begin, begin);
    image.end = std::max(image.end, begin + segment.p_memsz);
  }
  if (search.address < image.begin || search.address >= image.end) return 0;
  search.found = image;
  return 1;  // ends the walk
}

}  // namespace

AddressRange elf_image_of(const void* address) {
  Search search{reinterpret_cast<uintptr_t>(address), {}};
  if (dl_iterate_phdr(look_into, &search) == 0) {
    std::fprintf(stderr, "no loaded file holds the address %p\n", address);
    std::exit(1);
  }
  return search.found;
}

}  // namespace bench
