# Counters in every branch, for scripts/coverage. Continuous: kept in a shared file while the program runs, so that
# what a call counted before it ended in a fault, or before its library was unloaded, is not lost.

function(korvel_count_branches target)
  if(KORVEL_COVERAGE)
    target_compile_options(${target} PRIVATE
      -fprofile-instr-generate
      -fcoverage-mapping
      -fprofile-update=atomic
      "SHELL:-mllvm -runtime-counter-relocation")
    target_link_options(${target} PRIVATE -fprofile-instr-generate)
  endif()
endfunction()
