// A layout that was stored with a resource comes back: may memory be addressed by it?
#include <korvel_utils.h>
#include <stdio.h>
#include <string.h>

// 1 when this GPU and these rules made the record at `stored`, and its buffers lie inside
// `allocation_bytes`. The record to use is then the one in `copy`.
static int take(const void* stored, size_t stored_bytes, uint64_t allocation_bytes,
                MemoryLayout* copy) {
  // The device UUID is that of the GPU of this machine. No entry hands it out by itself, but
  // every layout that is made here bears it: one of a single texel is enough.
  static LayoutMetadata made_here;
  uint8_t driver_uuid[KORVEL_UUID_BYTES];
  if (korvel_init_memory_layout(&made_here, 1, 1, 1, 28, 1, KORVEL_TILING_TILED, 0, 1) !=
          KORVEL_SUCCESS ||
      get_driver_uuid(driver_uuid, KORVEL_UUID_BYTES) != 0) {
    return 0;
  }

  // A copy, for what others may still write to must not change behind the verdict.
  memset(copy, 0, sizeof *copy);
  memcpy(copy, stored, stored_bytes < sizeof *copy ? stored_bytes : sizeof *copy);
  if (validate_resource_memory_layout_metadata(copy, made_here.layout.device_uuid,
                                               driver_uuid) != KORVEL_SUCCESS ||
      copy->size > stored_bytes) {
    return 0;
  }
  // Every buffer ends inside these bytes when they are fewer than 2^31. They wrap to more
  // where total_size is below `size`.
  const uint64_t surface_bytes = copy->total_size - copy->size;
  return surface_bytes <= INT32_MAX && surface_bytes <= allocation_bytes;
}

int main(void) {
  static LayoutMetadata blob;
  static MemoryLayout copy;
  if (korvel_init_memory_layout(&blob, 64, 64, 1, 28, 1, KORVEL_TILING_TILED, 0, 1) !=
      KORVEL_SUCCESS) {
    return 1;
  }
  const MemoryLayout* stored = &blob.layout;
  const uint64_t allocation_bytes = korvel_get_aligned_gpu_buffer_size(&blob);

  printf("as it was stored: %d\n", take(stored, sizeof *stored, allocation_bytes, &copy));
  printf("in less memory: %d\n", take(stored, sizeof *stored, allocation_bytes - 1, &copy));
  blob.layout.device_uuid[4] ^= 1;  // word 1 is the family of the GPU
  printf("from another GPU: %d\n", take(stored, sizeof *stored, allocation_bytes, &copy));
  return 0;
}
