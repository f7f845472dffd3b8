# Test programs as WebAssembly, which Node runs. Included by tests/CMakeLists.txt.

target_sources(harness PRIVATE harness/left_out.cpp)
target_sources(loaded_library PRIVATE harness/wasm_fault_trap.cpp)

target_link_options(loaded_library PUBLIC
  # Most of the linker's time would go into making the programs fast.
  -O1
  # The files of the source tree, as Node sees them.
  -sNODERAWFS=1
  -sWASM_ASYNC_COMPILATION=0
  -sEXIT_RUNTIME=1
  # Its end is the guard of guarded records.
  -sINITIAL_MEMORY=256MB
  -sALLOW_MEMORY_GROWTH=0)

# korvel_leave_out(NAME REASON): what is not built for WebAssembly stands among the tests, skipped, with its reason.
# Single tests of programs that are built: harness/left_out.cpp.
function(korvel_leave_out name reason)
  set(sentence "left out: ${reason}")
  add_test(
    NAME left_out.${name}
    COMMAND ${CMAKE_COMMAND} -E echo ${sentence})
  set_tests_properties(left_out.${name} PROPERTIES SKIP_REGULAR_EXPRESSION ${sentence})
endfunction()
