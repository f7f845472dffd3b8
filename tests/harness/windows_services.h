// The simulator's operations for callers with the Windows calling convention.
#pragma once

#include <cstdint>
#include <string>

namespace harness {

inline constexpr const char* kServicesDll = "libhxluser.dll";

// 0 when the services have no operation of the name.
uintptr_t windows_service(const std::string& name);

}  // namespace harness
