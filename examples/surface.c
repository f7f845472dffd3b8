// A tiled 1920 x 1080 texture of R8G8B8A8_UNORM: what to allocate, and where its bytes lie.
#include <korvel_utils.h>
#include <stdio.h>

static LayoutMetadata blob;  // zeroed; it is stored with the resource

int main(void) {
  const uint32_t format = 28;  // DXGI_FORMAT_R8G8B8A8_UNORM: one plane, 4 bytes an element
  const uint32_t samples = 1, planes = 1;
  if (korvel_init_memory_layout(&blob, 1920, 1080, 1, format, samples, KORVEL_TILING_TILED,
                                LAYOUT_FLAG_UBWC, planes) != KORVEL_SUCCESS) {
    return 1;  // the services' log says why
  }

  const unsigned long long allocation_bytes = korvel_get_aligned_gpu_buffer_size(&blob);
  printf("allocate %llu bytes at a multiple of %u\n", allocation_bytes,
         blob.layout.alignment);

  const PlaneLayout* plane = &blob.layout.level[0].plane[0];
  if (plane->flag_valid == 1) {
    printf("flags at byte %llu\n", (unsigned long long)plane->flag_offset);
  }
  printf("image at byte %llu, %u rows of %u bytes\n",
         (unsigned long long)plane->image_offset, plane->image_height, plane->image_pitch);
  return 0;
}
