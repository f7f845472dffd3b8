// A record at the very end of readable memory: one byte read beyond it ends the process.
//
// harness::GuardedRecord has data(), size(), fill(bytes), and make_read_only(), from which on a
// write ends the process too.
#pragma once

#if defined(__EMSCRIPTEN__)
#include "tests/harness/wasm_guarded_record.h"
#else
#include "tests/harness/page_guarded_record.h"
#endif
