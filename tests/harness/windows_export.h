// An export of a loaded DLL behind a function that Linux code calls as one of its own.
#pragma once

#include <cstdint>

#include "tests/harness/exports.h"
#include "tests/harness/windows_convention.h"

namespace harness {

template <typename Function>
struct WindowsExport;

template <typename Result, typename... Arguments>
struct WindowsExport<Result (*)(Arguments...)> {
  using Function = Result(WINDOWS_CONVENTION*)(Arguments...);

  // `address` is where the export begins in the DLL that is loaded at the time of the call.
  template <const uintptr_t& address>
  static Result call(Arguments... arguments) {
    return reinterpret_cast<Function>(address)(arguments...);
  }
};

}  // namespace harness
