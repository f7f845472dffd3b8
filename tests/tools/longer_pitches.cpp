// Stands in front of the library and makes each pitch 64 bytes longer.
#include <dlfcn.h>

#include <cstdlib>

#include <korvel_utils.h>

uint32_t korvel_init_memory_layout(void* blob, int32_t width, int32_t height, int32_t depth,
                                   uint32_t format, uint32_t samples, uint32_t tiling_mode,
                                   uint64_t flags, uint32_t planes) {
  const auto library = reinterpret_cast<decltype(&korvel_init_memory_layout)>(
      dlsym(RTLD_NEXT, "korvel_init_memory_layout"));
  if (library == nullptr) std::abort();
  const uint32_t result =
      library(blob, width, height, depth, format, samples, tiling_mode, flags, planes);
  if (blob != nullptr)
    static_cast<LayoutMetadata*>(blob)->layout.level[0].plane[0].image_pitch += 64;
  return result;
}
