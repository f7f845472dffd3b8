// Which chip this is, the constants that hang on it, and the UUIDs made of it.
#include "rules.h"

namespace reference {

namespace {

constexpr uint32_t kNotIdentified = 0xFFFFFFFF;

void read_chip_id(Process& process) {
  if (call_library_open(process, 0) != 0) {
    log_message(process, "ReadGpuID_from_khxl", "Failed to open HXL Library!!!!");
    return;
  }
  const uint32_t handle = call_device_open(process, 1, 0);
  if (handle == 0) {
    process.identity.chip_id = 0;
  } else {
    uint32_t chip_id = 0;
    if (call_device_getinfo(process, handle, &chip_id) == 0) {
      process.identity.chip_id = chip_id;
    } else {
      process.identity.chip_id = 0;
    }
    call_device_close(process, handle);
  }
  call_library_close(process);
}

bool chip_has_row(const Process& process) {
  return process.chip.known && process.chip.chip_id == process.identity.chip_id;
}

void look_up_family(Process& process) {
  if (chip_has_row(process)) {
    process.identity.family_id = process.chip.family_id;
  } else {
    log_message(process, "korvel_get_family_id", "Unknown HXL chip ID %u",
                process.identity.chip_id);
  }
}

void look_up_model(Process& process) {
  if (chip_has_row(process)) {
    process.identity.model_code = process.chip.model_code;
  } else {
    log_message(process, "korvel_get_chip_id", "Unknown HXL chip ID %u", process.identity.chip_id);
  }
}

void look_up_revision(Process& process) {
  if (chip_has_row(process)) {
    process.identity.rev_id = process.chip.rev_id;
  } else {
    log_message(process, "korvel_get_rev_id", "Unknown HXL chip ID %u", process.identity.chip_id);
  }
}

void put_word(uint8_t* out, uint32_t word) {
  out[0] = static_cast<uint8_t>(word & 0xFF);
  out[1] = static_cast<uint8_t>((word >> 8) & 0xFF);
  out[2] = static_cast<uint8_t>((word >> 16) & 0xFF);
  out[3] = static_cast<uint8_t>((word >> 24) & 0xFF);
}

int32_t put_uuid(Process& process, const char* function, uint8_t* out, int32_t out_length,
                 uint32_t word_0, uint32_t word_1, uint32_t word_2, uint32_t word_3) {
  if (out_length < 16) {
    log_message(process, function, "Length of uuid array is too small");
    return -1;
  }
  put_word(out, word_0);
  put_word(out + 4, word_1);
  put_word(out + 8, word_2);
  put_word(out + 12, word_3);
  return 0;
}

}  // namespace

void identify_gpu(Process& process) {
  read_chip_id(process);
  look_up_family(process);
  look_up_model(process);
  look_up_revision(process);
}

void identify_gpu_if_needed(Process& process) {
  if (process.identity.chip_id == kNotIdentified) {
    identify_gpu(process);
  }
}

const ChipFacts& facts(const Process& process) {
  static const ChipFacts none{};
  if (chip_has_row(process)) {
    return process.chip;
  }
  return none;
}

bool is_supported_chip(const Process& process) {
  return facts(process).supported;
}

uint32_t chip_group(const Process& process) {
  if (!is_supported_chip(process)) {
    return 0;
  }
  return facts(process).family_id;
}

uint32_t base_alignment(const Process& process) {
  if (facts(process).base_alignment) {
    return 4096;
  }
  return 0;
}

uint32_t linear_alignment(const Process& process) {
  if (facts(process).linear_alignment) {
    return 64;
  }
  return 0;
}

uint32_t aux_alignment(const Process& process) {
  if (facts(process).aux_alignment) {
    return 512;
  }
  return 0;
}

uint32_t small_alignment(const Process& process) {
  if (facts(process).small_alignment) {
    return 16;
  }
  return 0;
}

uint32_t pixel_alignment(const Process& process) {
  if (facts(process).pixel_alignment) {
    return 64;
  }
  return 1;
}

uint32_t tiled_alignment(const Process& process) {
  if (facts(process).tiled_alignment) {
    return 4096;
  }
  return 1;
}

uint32_t min_level_extent(const Process& process) {
  if (facts(process).min_level_extent) {
    return 64;
  }
  return 0;
}

uint32_t level_offset_alignment(const Process& process) {
  if (facts(process).level_offset_alignment) {
    return 4096;
  }
  return 0;
}

uint32_t level_size_alignment(const Process& process) {
  if (facts(process).level_size_alignment) {
    return 4096;
  }
  return 0;
}

bool wide_enough_for_tiling(const Process& process, int32_t width, uint32_t bpp) {
  if (!facts(process).wide_enough_for_tiling) {
    return true;
  }
  return width >= static_cast<int32_t>(16 * bpp);
}

int32_t get_device_uuid(Process& process, uint8_t* out, int32_t out_length, uint32_t family_id,
                        uint32_t model_code, uint32_t rev_id) {
  return put_uuid(process, "get_device_uuid", out, out_length, 0x5A52, family_id, model_code,
                  rev_id);
}

int32_t get_override_device_uuid(Process& process, uint8_t* out, int32_t out_length,
                                 uint32_t family_id, uint32_t model_code, uint32_t rev_id,
                                 uint16_t word_0) {
  return put_uuid(process, "get_override_device_uuid", out, out_length, word_0, family_id,
                  model_code, rev_id);
}

int32_t get_driver_uuid(Process& process, uint8_t* out, int32_t out_length) {
  return put_uuid(process, "get_driver_uuid", out, out_length, 4, 1, 3, 0);
}

int32_t uuid_to_str(Process& process, char* text, int32_t text_size, const uint8_t* uuid,
                    uint32_t uuid_length) {
  if (uuid_length != 16) {
    log_message(process, "uuid_to_str", "Bad uuid length %u", uuid_length);
    return -1;
  }
  uint64_t size = 0;
  if (text_size > 0) {
    size = static_cast<uint64_t>(text_size);
  }
  const int32_t length = call_snprintf_uuid(process, text, size, uuid);
  if (length >= 0 && length < text_size) {
    return 0;
  }
  return -1;
}

uint32_t isSecureContextSupportedByGpu(Process& process) {
  if (call_library_open(process, 0x800) != 0) {
    log_message(process, "isSecureContextSupportedByGpu", "Failed to open HXL Library!!!!");
    return 0;
  }
  uint32_t result = 0;
  const uint32_t handle = call_device_open(process, 1, 0);
  call_memset(process, 0, 0x118);
  if (handle != 0) {
    uint32_t word = 0;
    if (call_device_getinfo_ext(process, handle, &word) == 0) {
      result = word;
    }
    call_device_close(process, handle);
  }
  call_library_close(process);
  return result;
}

uint32_t get_gpu_pixel_alignment(Process& process) {
  identify_gpu_if_needed(process);
  return pixel_alignment(process);
}

// Each of the two properties asks for the GPU before it is looked up: the mode's, then the base's.
uint32_t get_slice_pitch_alignment(Process& process, uint32_t tiling_mode) {
  identify_gpu_if_needed(process);
  uint32_t m = linear_alignment(process);
  if (tiling_mode == 1) {
    m = tiled_alignment(process);
  }
  identify_gpu_if_needed(process);
  uint32_t b = base_alignment(process);
  const uint32_t product = b * m;
  while (m != 0) {
    const uint32_t rest = b % m;
    b = m;
    m = rest;
  }
  return divide(product, b);
}

}  // namespace reference
