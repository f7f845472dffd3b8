// The alignment exports: argument checks, the choice of the family's rules, and the answers in
// bytes.
#include "rules.h"

namespace reference {

namespace {

bool size_is_negative(Process& process, const char* function, int32_t width, int32_t height) {
  if (width >= 0 && height >= 0) return false;
  log_message(process, function, "Invalid width or height: W = %d, H = %d", width, height);
  return true;
}

void log_unknown_chip(Process& process, const char* function) {
  log_message(process, function, "Unknown Chip ID %d",
              static_cast<int32_t>(process.identity.chip_id));
}

uint32_t element_bytes_with_samples(uint32_t format, uint32_t plane, uint32_t samples,
                                    uint32_t tiling_mode) {
  const uint32_t e = format_plane_bytes(format, plane);
  if (tiling_mode == 1) return e * samples;
  return e;
}

// On a supported chip the outputs are not looked at.
void check_size_only(Process& process, int32_t width, int32_t height, uint32_t* out_width,
                     uint32_t* out_height) {
  const char* const function = "compute_aligned_width_and_height";
  if (size_is_negative(process, function, width, height)) {
    *out_width = 1;
    *out_height = 1;
    return;
  }
  if (is_supported_chip(process)) return;
  log_unknown_chip(process, function);
  *out_width = static_cast<uint32_t>(width);
  *out_height = static_cast<uint32_t>(height);
}

Dimensions align_fully(Process& process, int32_t signed_width, int32_t signed_height,
                       uint32_t plane, uint32_t format, uint32_t samples, uint32_t tiling_mode,
                       uint32_t selector, int32_t min_padded_row_bytes) {
  const char* const function = "compute_fmt_aligned_width_and_height";
  if (size_is_negative(process, function, signed_width, signed_height)) return {1, 1};
  const uint32_t width = static_cast<uint32_t>(signed_width);
  const uint32_t height = static_cast<uint32_t>(signed_height);
  const uint32_t e = element_bytes_with_samples(format, plane, samples, tiling_mode);
  const uint32_t group = chip_group(process);
  if (group == 6 || group == 7) {
    const uint32_t w = align_width_family67(process, width, plane, e, samples, format, tiling_mode,
                                            tiling_mode, selector, min_padded_row_bytes, 1, 0);
    const uint32_t h = align_height_family67(height, plane, samples, format, tiling_mode, 0);
    return {w, h};
  }
  if (group == 5) {
    const uint32_t w =
        align_width_family5(width, e, format, tiling_mode, selector, min_padded_row_bytes);
    const uint32_t h = align_height_family5(height, e, format, tiling_mode);
    return {w, h};
  }
  log_unknown_chip(process, function);
  return {width, height};
}

Dimensions align_minimally(Process& process, int32_t signed_width, int32_t signed_height,
                           uint32_t plane, uint32_t format, uint32_t samples, uint32_t tiling_mode,
                           uint32_t tiling_allowed, uint32_t selector, int32_t min_padded_row_bytes,
                           uint32_t divisor, uint32_t want_extra_padding) {
  const char* const function = "compute_fmt_minimal_aligned_width_and_height";
  if (size_is_negative(process, function, signed_width, signed_height)) return {1, 1};
  const uint32_t width = static_cast<uint32_t>(signed_width);
  const uint32_t height = static_cast<uint32_t>(signed_height);
  const uint32_t e = element_bytes_with_samples(format, plane, samples, tiling_mode);
  const uint32_t group = chip_group(process);
  if (group == 6 || group == 7) {
    uint32_t extra_width = 0;
    uint32_t extra_rows = 0;
    if (want_extra_padding != 0) {
      extra_width = extra_width_padding(process, format);
      extra_rows = extra_height_padding(process);
    }
    const uint32_t w =
        align_width_family67(process, width, plane, e, samples, format, tiling_mode, tiling_allowed,
                             selector, min_padded_row_bytes, divisor, extra_width);
    const uint32_t h =
        align_height_family67(height, plane, samples, format, tiling_mode, extra_rows);
    return {w, h};
  }
  if (group == 5) {
    const uint32_t w = minimal_width_family5(width, e, format, samples, tiling_mode, tiling_allowed,
                                             selector, min_padded_row_bytes, divisor);
    const uint32_t h = align_height_family5(height, e, format, tiling_mode);
    return {w, h};
  }
  log_unknown_chip(process, function);
  return {width, height};
}

}  // namespace

Dimensions align_for_layout(Process& process, int32_t signed_width, int32_t signed_height,
                            uint32_t plane, uint32_t format, uint32_t samples, uint32_t tiling_mode,
                            uint32_t selector, int32_t min_padded_row_bytes, uint32_t divisor,
                            uint32_t want_extra_padding) {
  const char* const function = "compute_fmt_aligned_width_and_height_fdm";
  if (size_is_negative(process, function, signed_width, signed_height)) return {1, 1};
  const uint32_t width = static_cast<uint32_t>(signed_width);
  const uint32_t height = static_cast<uint32_t>(signed_height);
  const uint32_t e = element_bytes_with_samples(format, plane, samples, tiling_mode);
  const uint32_t group = chip_group(process);
  if (group == 6 || group == 7) {
    uint32_t extra_width = 0;
    uint32_t extra_rows = 0;
    if (want_extra_padding != 0) {
      extra_width = extra_width_padding(process, format);
      extra_rows = extra_height_padding(process);
    }
    const uint32_t w =
        align_width_family67(process, width, plane, e, samples, format, tiling_mode, tiling_mode,
                             selector, min_padded_row_bytes, divisor, extra_width);
    const uint32_t h =
        align_height_family67(height, plane, samples, format, tiling_mode, extra_rows);
    return {w, h};
  }
  if (group == 5) {
    const uint32_t w =
        align_width_family5(width, e, format, tiling_mode, selector, min_padded_row_bytes);
    const uint32_t h = align_height_family5(height, e, format, tiling_mode);
    return {w, h};
  }
  log_unknown_chip(process, function);
  return {width, height};
}

void compute_aligned_width_and_height(Process& process, int32_t width, int32_t height,
                                      uint32_t /*a3*/, uint32_t /*a4*/, uint32_t /*a5*/,
                                      uint32_t /*a6*/, uint32_t* out_width, uint32_t* out_height) {
  identify_gpu_if_needed(process);
  check_size_only(process, width, height, out_width, out_height);
}

uint32_t compute_surface_padding(Process& process, int32_t width, uint32_t /*a2*/,
                                 int32_t /*tiling_mode*/, uint32_t /*a4*/, uint32_t /*a5*/) {
  identify_gpu_if_needed(process);
  uint32_t w = 0;
  uint32_t h = 0;
  check_size_only(process, width, 1, &w, &h);
  return w;
}

void compute_fmt_aligned_width_and_height(Process& process, int32_t width, int32_t height,
                                          uint32_t plane, uint32_t format, uint32_t samples,
                                          uint32_t tiling_mode, uint32_t selector,
                                          int32_t min_padded_row_bytes, uint32_t* out_width,
                                          uint32_t* out_height) {
  identify_gpu_if_needed(process);
  const Dimensions size = align_fully(process, width, height, plane, format, samples, tiling_mode,
                                      selector, min_padded_row_bytes);
  *out_width = size.width;
  *out_height = size.height;
}

void compute_fmt_minimal_aligned_width_and_height(Process& process, int32_t width, int32_t height,
                                                  uint32_t plane, uint32_t format, uint32_t samples,
                                                  uint32_t tiling_mode, uint32_t tiling_allowed,
                                                  uint32_t selector, int32_t min_padded_row_bytes,
                                                  uint32_t divisor, uint32_t want_extra_padding,
                                                  uint32_t* out_width, uint32_t* out_height) {
  identify_gpu_if_needed(process);
  const Dimensions size =
      align_minimally(process, width, height, plane, format, samples, tiling_mode, tiling_allowed,
                      selector, min_padded_row_bytes, divisor, want_extra_padding);
  *out_width = size.width;
  *out_height = size.height;
}

void compute_fmt_aligned_width_and_height_in_bytes(Process& process,
                                                   const AlignInBytesParams* params,
                                                   const AlignInBytesResult* result) {
  identify_gpu_if_needed(process);
  const uint32_t e = format_plane_bytes(params->format, params->plane);
  uint32_t bytes = element_bytes(npot_substitute_format(params->format));
  uint32_t block_width = 1;
  if (has_flag(params->format, kFlagBlockCompressed)) {
    block_width = format_block_dims(params->format).width;
  }
  uint32_t tiling_allowed = 1;
  if (is_supported_chip(process) && params->width < static_cast<int32_t>(16 * block_width)) {
    *params->tiling_mode = 0;
    tiling_allowed = 0;
  }
  const uint32_t tiling_mode = *params->tiling_mode;
  if (tiling_mode == 1) {
    bytes *= params->samples;
  }
  const Dimensions minimal = align_minimally(
      process, params->width, params->height, params->plane, params->format, params->samples,
      tiling_mode, tiling_allowed, params->selector, params->min_padded_row_bytes, e, 0);
  *result->minimal_row_bytes = bytes * minimal.width;
  const Dimensions full =
      align_fully(process, params->width, params->height, params->plane, params->format,
                  params->samples, tiling_mode, params->selector, params->min_padded_row_bytes);
  *result->aligned_row_bytes = bytes * full.width;
  *result->aligned_height = full.height;
}

void compute_fmt_aligned_width_and_height_fdm(Process& process, int32_t width, int32_t height,
                                              uint32_t plane, uint32_t format, uint32_t samples,
                                              uint32_t tiling_mode, uint32_t selector,
                                              int32_t min_padded_row_bytes, uint32_t divisor,
                                              uint32_t want_extra_padding, uint32_t* out_width,
                                              uint32_t* out_height) {
  identify_gpu_if_needed(process);
  const Dimensions size =
      align_for_layout(process, width, height, plane, format, samples, tiling_mode, selector,
                       min_padded_row_bytes, divisor, want_extra_padding);
  *out_width = size.width;
  *out_height = size.height;
}

}  // namespace reference
