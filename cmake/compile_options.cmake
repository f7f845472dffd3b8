# What every target of the project is compiled with.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_C_STANDARD 99)
set(CMAKE_C_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/lib)
set(CMAKE_ARCHIVE_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/lib)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/bin)

# Programs and libraries find each other wherever the build folder is moved to.
set(CMAKE_BUILD_RPATH_USE_ORIGIN ON)
if(NOT WIN32 AND NOT EMSCRIPTEN)
  add_link_options(-Wl,--enable-new-dtags)
endif()

add_compile_options(-Wall -Wextra -Wconversion -Wshadow)
if(PROJECT_IS_TOP_LEVEL)
  # Elsewhere the compiler is not one that this was tried with.
  add_compile_options(-Werror)
endif()

if(KORVEL_SANITIZE)
  add_compile_options(
    -fsanitize=${KORVEL_SANITIZE}
    -fno-sanitize-recover=all
    -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${KORVEL_SANITIZE})
endif()
