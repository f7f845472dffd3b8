# Windows, from Linux: clang makes the objects and lld-link the DLL. The includer sets
# CMAKE_SYSTEM_PROCESSOR.
#
# The C declarations are mingw-w64's and the C++ headers libc++'s. Nothing of either is linked: the
# library needs types and templates, no run-time library.

set(CMAKE_SYSTEM_NAME Windows)

set(CMAKE_C_COMPILER clang-19)
set(CMAKE_CXX_COMPILER clang++-19)
set(CMAKE_ASM_COMPILER clang-19)
foreach(language C CXX ASM)
  set(CMAKE_${language}_COMPILER_TARGET ${CMAKE_SYSTEM_PROCESSOR}-w64-mingw32)
endforeach()
set(CMAKE_RC_COMPILER llvm-rc-19)
set(CMAKE_AR llvm-ar-19)
set(CMAKE_RANLIB llvm-ranlib-19)

# There is no C run-time library that a program could be linked with.
set(CMAKE_TRY_COMPILE_TARGET_TYPE STATIC_LIBRARY)

set(CMAKE_C_FLAGS_INIT "-isystem /usr/share/mingw-w64/include")
set(CMAKE_CXX_FLAGS_INIT
  "-nostdinc++ -isystem /usr/lib/llvm-19/include/c++/v1 -isystem /usr/share/mingw-w64/include")

# Chosen by the instruction counts of scripts/bench: rules that are written as many small functions become one again
# where an entry calls them; and blocks of code stand so that fewer of them end in a jump.
set(CMAKE_CXX_FLAGS_RELEASE
  "-O3 -DNDEBUG -mllvm -inline-threshold=2000 -mllvm -enable-ext-tsp-block-placement"
  CACHE STRING "Flags of the configuration Release")
