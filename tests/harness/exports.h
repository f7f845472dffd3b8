// Every export of the library, once.
#pragma once

#define KORVEL_EXPORTS(X)                           \
  X(compute_aligned_width_and_height)               \
  X(compute_compressedfmt_aligned_width_and_height) \
  X(compute_fmt_aligned_width_and_height)           \
  X(compute_fmt_aligned_width_and_height_fdm)       \
  X(compute_fmt_aligned_width_and_height_in_bytes)  \
  X(compute_fmt_minimal_aligned_width_and_height)   \
  X(compute_surface_padding)                        \
  X(get_device_uuid)                                \
  X(get_driver_uuid)                                \
  X(get_gpu_pixel_alignment)                        \
  X(get_override_device_uuid)                       \
  X(get_slice_pitch_alignment)                      \
  X(isFormatRenderableByGpu)                        \
  X(isFormatSampleableByGpu)                        \
  X(isSecureContextSupportedByGpu)                  \
  X(isUBWCSupportedByGpu)                           \
  X(korvel_get_aligned_gpu_buffer_size)             \
  X(korvel_get_metadata_blob_size)                  \
  X(korvel_init_memory_layout)                      \
  X(korvel_init_multi_level_surface)                \
  X(korvel_init_single_level_surface)               \
  X(uuid_to_str)                                    \
  X(validate_resource_memory_layout_metadata)       \
  X(validate_surface_metadata)
