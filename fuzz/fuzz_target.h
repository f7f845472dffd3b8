// What a target is: one function that takes one input. The fuzzer and the replay program call it.
#pragma once

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size);
