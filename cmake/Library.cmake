# libqvLog. Every source file in its rooms belongs to it, so a new file needs no entry here.

file(GLOB QVLOG_SOURCES CONFIGURE_DEPENDS RELATIVE ${PROJECT_SOURCE_DIR}
  qvLog/*.cpp qv/*.cpp qvraTools/*.cpp qvraTools/format/*.cpp
  qvOS/posix/*.cpp qvOS/multiplatform/*.cpp qvOS/generic/*.cpp)

# Compiled once, position-independent, for the library and for the archive that the tests link.
add_library(qvLog_objects OBJECT ${QVLOG_SOURCES})
set_target_properties(qvLog_objects PROPERTIES
  POSITION_INDEPENDENT_CODE ON
  CXX_VISIBILITY_PRESET hidden
  VISIBILITY_INLINES_HIDDEN ON)
target_include_directories(qvLog_objects PUBLIC ${PROJECT_SOURCE_DIR})
target_link_libraries(qvLog_objects PRIVATE qvLog_settings)
target_compile_options(qvLog_objects PRIVATE
  # A function that nobody calls is left out, and a call inside the library does not ask who else has that name.
  -ffunction-sections -fdata-sections -fno-semantic-interposition
  # The sources throw nothing. Their tables for unwinding stay, for back-traces.
  -fno-exceptions -funwind-tables)

# What a program calls again and again is optimised for speed, the rest for size; MinSizeRel has all of it small.
set(theBusySources ${QVLOG_SOURCES})
list(FILTER theBusySources INCLUDE REGEX "^(\
qvLog/qv(Log|MainLogger|Logger|Logger_File|Logger_Func|Logger_qvLogd|LoggerPrefix|LoggerText)\\.cpp|\
qv/(CString|CharBuffer|GrowingBuffer|StringBuffer)|\
qvraTools/format/|\
qvraTools/qv(UTF|Unicode|Dictionary|INIFile|INIFileLoader|CStringParser|TimeRFC1123|UUID|Malloc)|\
qvraTools/qvConvert(|Classes|Double|Hex)\\.cpp|\
qvOS/posix/qv(Mutex|Time)\\.)")
set_property(SOURCE ${QVLOG_SOURCES} APPEND PROPERTY COMPILE_OPTIONS $<$<CONFIG:Release>:-Os>)
set_property(SOURCE ${theBusySources} APPEND PROPERTY COMPILE_OPTIONS $<$<CONFIG:Release>:-O2>)

add_library(qvLog $<TARGET_OBJECTS:qvLog_objects>)
add_library(qvLog::qvLog ALIAS qvLog)
set_target_properties(qvLog PROPERTIES
  LINKER_LANGUAGE CXX
  VERSION ${PROJECT_VERSION}
  SOVERSION ${PROJECT_VERSION_MAJOR})
target_link_libraries(qvLog PRIVATE $<BUILD_INTERFACE:qvLog_settings> ${CMAKE_DL_LIBS})
target_include_directories(qvLog INTERFACE
  $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}>
  $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
if(BUILD_SHARED_LIBS)
  target_link_options(qvLog PRIVATE
    -Wl,--version-script=${PROJECT_SOURCE_DIR}/cmake/exports.map -Wl,-z,relro
    -Wl,--gc-sections -Wl,-Bsymbolic-functions -Wl,--as-needed)
  set_target_properties(qvLog PROPERTIES LINK_DEPENDS ${PROJECT_SOURCE_DIR}/cmake/exports.map)
  if(NOT QVLOG_SANITIZE)
    target_link_options(qvLog PRIVATE -Wl,--no-undefined)
  endif()
endif()

# The C++ runtime: of its own start alone a C program would notice more than of all the rest of the library. Hidden,
# a C program does not load it; the little that the compiler's code asks for is linked in.
set(QVLOG_CXX_RUNTIME hidden CACHE STRING "C++ runtime of the shared library: hidden or shared")
set_property(CACHE QVLOG_CXX_RUNTIME PROPERTY STRINGS hidden shared)
if(BUILD_SHARED_LIBS AND QVLOG_CXX_RUNTIME STREQUAL "hidden" AND NOT QVLOG_SANITIZE
    AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  target_sources(qvLog PRIVATE ${PROJECT_SOURCE_DIR}/qvOS/cxxruntime/qvCXXRuntime.cpp)
  # Its names are asked for by what the linker adds last.
  set_property(SOURCE qvOS/cxxruntime/qvCXXRuntime.cpp APPEND PROPERTY COMPILE_OPTIONS -fno-lto)
  # The runtime's type information, and arithmetic that the processor lacks. Nothing is left for the shared ones, so
  # the linker leaves them out.
  target_link_libraries(qvLog PRIVATE -l:libsupc++.a)
  target_link_options(qvLog PRIVATE -static-libgcc)
endif()

# The library's objects as an archive: tests and fuzz targets reach what a *_p.h header declares.
add_library(qvLog_archive STATIC EXCLUDE_FROM_ALL $<TARGET_OBJECTS:qvLog_objects>)
set_target_properties(qvLog_archive PROPERTIES LINKER_LANGUAGE CXX)
target_include_directories(qvLog_archive PUBLIC ${PROJECT_SOURCE_DIR})
target_link_libraries(qvLog_archive PUBLIC qvLog_settings ${CMAKE_DL_LIBS} pthread)
if(QVLOG_BUILD_STATIC AND BUILD_SHARED_LIBS)
  set_target_properties(qvLog_archive PROPERTIES OUTPUT_NAME qvLog EXCLUDE_FROM_ALL OFF)
endif()

include(cmake/Install.cmake)
