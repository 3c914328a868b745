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
    -Wl,--version-script=${PROJECT_SOURCE_DIR}/cmake/exports.map -Wl,-z,relro -Wl,-z,now)
  set_target_properties(qvLog PROPERTIES LINK_DEPENDS ${PROJECT_SOURCE_DIR}/cmake/exports.map)
  if(NOT QVLOG_SANITIZE)
    target_link_options(qvLog PRIVATE -Wl,--no-undefined)
  endif()
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
