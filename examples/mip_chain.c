// The mip chain of a tiled 256 x 256 texture: initialise, set `levels`, lay the chain out.
#include <korvel_utils.h>
#include <stdio.h>

static LayoutMetadata blob;  // zeroed, as korvel_init_multi_level_surface() wants it

int main(void) {
  // Checks the arguments and writes the record's head: UUIDs, format, alignment.
  if (korvel_init_memory_layout(&blob, 256, 256, 1, 28, 1, KORVEL_TILING_TILED, 0, 1) !=
      KORVEL_SUCCESS) {
    return 1;
  }
  // 256, 128, ... 1: each level halves the one before. Nothing checks the number: 1 to 15.
  blob.layout.levels = 9;
  korvel_init_multi_level_surface(&blob.layout, 256, 256, 1, 28, 1, KORVEL_TILING_TILED, 0,
                                  1);

  for (uint32_t l = 0; l < blob.layout.levels; ++l) {
    const PlaneLayout* plane = &blob.layout.level[l].plane[0];
    printf("level %u at byte %llu, %u rows of %u bytes\n", l,
           (unsigned long long)plane->image_offset, plane->image_height, plane->image_pitch);
  }
  // Array slice n of every level lies n x image_slice_pitch bytes further on.
  printf("allocate %llu bytes\n",
         (unsigned long long)korvel_get_aligned_gpu_buffer_size(&blob));
  return 0;
}
