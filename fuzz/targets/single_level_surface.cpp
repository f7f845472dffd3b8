// korvel_init_single_level_surface
#include "fuzz/fuzz_target.h"
#include "fuzz/surface_entry_property.h"

namespace {

using fuzz::SurfaceArguments;

struct SingleLevelSurface {
  static void rules(reference::Process& process, MemoryLayout& record, const SurfaceArguments& a) {
    reference::korvel_init_single_level_surface(process, &record, a.width, a.height, a.depth,
                                                a.format, a.samples, a.tiling_mode, a.flags,
                                                a.planes);
  }
  static void library(const harness::Library& library, MemoryLayout& record,
                      const SurfaceArguments& a) {
    library.korvel_init_single_level_surface(&record, a.width, a.height, a.depth, a.format,
                                             a.samples, a.tiling_mode, a.flags, a.planes);
  }
};

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  fuzz::InputBytes input(data, size);
  fuzz::check_surface_entry(input, fuzz::Slices::of_one_plane, SingleLevelSurface());
  return 0;
}
