/* Records for a debugger to show: a chain of two levels in use of 15, and one that another component of the driver wrote. */
#include <korvel_utils.h>

static LayoutMetadata blob;
static SurfaceMetadata surface;

/* Where the debugger looks. */
static volatile int ready;
static void look_here(void) {
  ready = ready + 1;
}

int main(void) {
  if (korvel_init_memory_layout(&blob, 256, 256, 1, 28, 1, KORVEL_TILING_TILED, 0, 1) != 0)
    return 1;
  blob.layout.levels = 2;
  korvel_init_multi_level_surface(&blob.layout, 256, 256, 1, 28, 1, KORVEL_TILING_TILED,
                                  LAYOUT_FLAG_EXTRA, 1);
  surface.guid = 1;
  surface.size = KORVEL_SURFACE_BYTES;
  surface.total_size = KORVEL_SURFACE_BYTES + 0x2000;
  surface.alignment = 4096;
  surface.format = 28;
  surface.samples = 4;
  surface.levels = 16;
  surface.level[0].slices = 2;
  surface.level[0].planes = 1;
  surface.level[0].plane[0].flag_valid = 1;
  surface.level[0].plane[0].flag_offset = 0x1000;
  look_here();
  return 0;
}
