option(KORVEL_TOOLS "Build korvel-layout" ON)
option(KORVEL_TESTS "Build the tests" ON)
option(KORVEL_BENCH "Build the benchmarks" ON)
set(KORVEL_SANITIZE "" CACHE STRING "Sanitizers to build everything with, as -fsanitize= takes them")
