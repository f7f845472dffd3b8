# What is built, and how.

option(KORVEL_TOOLS "Build korvel-layout" ON)
option(KORVEL_TESTS "Build the tests" ON)
option(KORVEL_BUNDLE_TOOL "Compile the tool's sources in two bundles" ON)
option(KORVEL_BENCH "Build the benchmarks, which takes the tests" ON)
option(KORVEL_FUZZ "Build the fuzzers, which takes clang" OFF)
set(KORVEL_SANITIZE "" CACHE STRING "Sanitizers to build everything with, as -fsanitize= takes them")
option(KORVEL_COVERAGE "Count the branches that the library takes" OFF)

# A WebAssembly module loads nothing: there the library, and what stands in for the services, are linked into it.
if(EMSCRIPTEN)
  set(KORVEL_LIBRARY_TYPE STATIC)
else()
  set(KORVEL_LIBRARY_TYPE SHARED)
endif()
