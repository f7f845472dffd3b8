#include "fuzz/record_kind.h"

#include <cstring>

namespace fuzz {

const records::Uuids& usual_uuids() {
  static const records::Uuids uuids = [] {
    records::Uuids made;
    const Machine& machine = usual_machine();
    const reference::Identity& identity = machine.process.identity;
    machine.library.get_device_uuid(made.device, KORVEL_UUID_BYTES, identity.family_id,
                                    identity.model_code, identity.rev_id);
    machine.library.get_driver_uuid(made.driver, KORVEL_UUID_BYTES);
    return made;
  }();
  return uuids;
}

std::size_t ResourceKind::readable_bytes(std::span<const uint8_t> record) {
  uint32_t size = 0;
  std::memcpy(&size, record.data() + offsetof(MemoryLayout, size), sizeof size);
  if (size == KORVEL_LAYOUT_BYTES_VERSION_2 || size == KORVEL_LAYOUT_BYTES_VERSION_3) return size;
  return KORVEL_LAYOUT_BYTES_VERSION_1;
}

uint32_t ResourceKind::validate(const harness::Library& library, const void* record) {
  return library.validate_resource_memory_layout_metadata(record, usual_uuids().device,
                                                          usual_uuids().driver);
}

uint32_t ResourceKind::rules(reference::Process& process, const void* record) {
  return reference::validate_resource_memory_layout_metadata(process, record, usual_uuids().device,
                                                             usual_uuids().driver);
}

uint32_t SurfaceKind::validate(const harness::Library& library, const void* record) {
  return library.validate_surface_metadata(record, usual_uuids().device, usual_uuids().driver);
}

uint32_t SurfaceKind::rules(reference::Process& process, const void* record) {
  return reference::validate_surface_metadata(process, record, usual_uuids().device,
                                              usual_uuids().driver);
}

}  // namespace fuzz
