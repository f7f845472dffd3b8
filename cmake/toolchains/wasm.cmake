# WebAssembly, by Debian's emscripten. What is built runs in Node, and in browsers.
#
# Debian's package brings the C and C++ run-time libraries built, and its configuration freezes them: compiling writes
# to no folder but the build's, and nothing is fetched.

find_program(KORVEL_EM_CONFIG em-config)
if(NOT KORVEL_EM_CONFIG)
  message(FATAL_ERROR "em-config of emscripten is not found: Debian has it in the package emscripten")
endif()
execute_process(
  COMMAND ${KORVEL_EM_CONFIG} EMSCRIPTEN_ROOT
  OUTPUT_VARIABLE emscripten_root
  OUTPUT_STRIP_TRAILING_WHITESPACE
  COMMAND_ERROR_IS_FATAL ANY)

set(EMSCRIPTEN_SYSTEM_PROCESSOR wasm32)
include(${emscripten_root}/cmake/Modules/Platform/Emscripten.cmake)

# The linker's own JavaScript programs use packages of Debian's, which a Node from elsewhere does not look for there.
foreach(language C CXX)
  set(CMAKE_${language}_LINKER_LAUNCHER ${CMAKE_COMMAND} -E env NODE_PATH=/usr/share/nodejs)
endforeach()

# C++ exceptions by the instructions of WebAssembly itself, which every current engine has. All objects of a program
# must agree.
set(CMAKE_CXX_FLAGS_INIT -fwasm-exceptions)
