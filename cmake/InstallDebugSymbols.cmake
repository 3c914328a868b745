# Installs the debug information of theFile under the name of its build id.

execute_process(COMMAND readelf -n ${theFile} OUTPUT_VARIABLE theNotes COMMAND_ERROR_IS_FATAL ANY)
if(NOT theNotes MATCHES "Build ID: ([0-9a-f][0-9a-f])([0-9a-f]+)")
  message(FATAL_ERROR "${theFile} has no build id")
endif()
set(theFolder $ENV{DESTDIR}${CMAKE_INSTALL_PREFIX}/lib/debug/.build-id/${CMAKE_MATCH_1})
set(theSymbols ${theFolder}/${CMAKE_MATCH_2}.debug)
file(MAKE_DIRECTORY ${theFolder})
execute_process(COMMAND objcopy --only-keep-debug --compress-debug-sections ${theFile} ${theSymbols}
  COMMAND_ERROR_IS_FATAL ANY)
file(CHMOD ${theSymbols} PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)
