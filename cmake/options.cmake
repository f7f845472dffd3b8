# What is built, and how. A project that has this one as a part of it gets the library, on ELF systems with the simulator
# to run it on, and asks for more by name.

option(KORVEL_TOOLS "Build korvel-layout" ${PROJECT_IS_TOP_LEVEL})
option(KORVEL_TESTS "Build the tests" ${PROJECT_IS_TOP_LEVEL})
option(KORVEL_INSTALL "Make the rules of installation and packages" ${PROJECT_IS_TOP_LEVEL})
option(KORVEL_BUNDLE_TOOL "Compile the tool's sources in two bundles" ON)
option(KORVEL_SLOW_TESTS "Have tests that take a minute and more, as scripts/test does without --quick" OFF)
option(KORVEL_BENCH "Build the benchmarks, which takes the tests" ${PROJECT_IS_TOP_LEVEL})
option(KORVEL_FUZZ "Build the fuzzers, which takes clang" OFF)
set(KORVEL_SANITIZE "" CACHE STRING "Sanitizers to build everything with, as -fsanitize= takes them")
option(KORVEL_COVERAGE "Count the branches that the library takes" OFF)

# A WebAssembly module loads nothing: there the library, and what stands in for the services, are linked into it.
if(EMSCRIPTEN)
  set(KORVEL_LIBRARY_TYPE STATIC)
else()
  set(KORVEL_LIBRARY_TYPE SHARED)
endif()
