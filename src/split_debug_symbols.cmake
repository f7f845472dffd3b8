# cmake -D LIBRARY=FILE -D FOLDER=... -D OBJCOPY=... -D READELF=... -P: takes the symbols out of the library, to FILE.debug
# and to the name that debuggers make of the build id: its first byte is a folder, the others are the file.

execute_process(
  COMMAND ${READELF} --wide --sections --notes ${LIBRARY}
  OUTPUT_VARIABLE told
  COMMAND_ERROR_IS_FATAL ANY)
# A change of the build's rules alone runs this for a library that was not linked anew.
if(NOT told MATCHES "\\.gnu_debuglink")
  execute_process(
    COMMAND ${OBJCOPY} --only-keep-debug --compress-debug-sections ${LIBRARY} ${LIBRARY}.debug
    COMMAND_ERROR_IS_FATAL ANY)
  execute_process(
    COMMAND ${OBJCOPY} --strip-all --add-gnu-debuglink=${LIBRARY}.debug ${LIBRARY}
    COMMAND_ERROR_IS_FATAL ANY)
endif()

if(NOT told MATCHES "Build ID: ([0-9a-f][0-9a-f])([0-9a-f]+)")
  message(FATAL_ERROR "${LIBRARY} has no build id")
endif()
file(REMOVE_RECURSE ${FOLDER})
file(MAKE_DIRECTORY ${FOLDER}/${CMAKE_MATCH_1})
file(COPY_FILE ${LIBRARY}.debug ${FOLDER}/${CMAKE_MATCH_1}/${CMAKE_MATCH_2}.debug)
