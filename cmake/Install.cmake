# Headers, library, the CMake package qvLog, qvLog.pc and the guides, each in the component that it belongs to.

include(CMakePackageConfigHelpers)

# What is not said to belong elsewhere is for those who compile.
set(CMAKE_INSTALL_DEFAULT_COMPONENT_NAME development)

install(TARGETS qvLog EXPORT qvLogTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT library NAMELINK_COMPONENT development
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
if(QVLOG_BUILD_STATIC AND BUILD_SHARED_LIBS)
  install(TARGETS qvLog_archive ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
endif()
foreach(theRoom qvLog qv qvraTools qvOS)
  install(DIRECTORY ${PROJECT_SOURCE_DIR}/${theRoom} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
    FILES_MATCHING PATTERN "*.h" PATTERN "*_p.h" EXCLUDE
    # Sources of the layers live in folders of their own; none of them holds a public header.
    PATTERN "posix" EXCLUDE PATTERN "multiplatform" EXCLUDE PATTERN "generic" EXCLUDE PATTERN "cxxruntime" EXCLUDE)
endforeach()

install(EXPORT qvLogTargets NAMESPACE qvLog:: DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/qvLog)
configure_package_config_file(${PROJECT_SOURCE_DIR}/packaging/cmake/qvLogConfig.cmake.in
  ${PROJECT_BINARY_DIR}/qvLogConfig.cmake
  INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/qvLog)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/qvLogConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/qvLogConfig.cmake ${PROJECT_BINARY_DIR}/qvLogConfigVersion.cmake
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/qvLog)

# Relative to the folder of qvLog.pc, so that an installed tree may be moved; the library folder can have two levels.
# What belongs to the system is never moved, and pkg-config then leaves out the folders that compilers know.
if(CMAKE_INSTALL_PREFIX STREQUAL "/usr")
  set(QVLOG_PC_PREFIX /usr)
else()
  file(RELATIVE_PATH QVLOG_PC_PREFIX /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
  string(PREPEND QVLOG_PC_PREFIX "\${pcfiledir}/")
endif()
configure_file(${PROJECT_SOURCE_DIR}/packaging/qvLog.pc.in ${PROJECT_BINARY_DIR}/qvLog.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/qvLog.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

# GDB loads the pretty-printers that bear the library's full name in its own tree, or beside the library.
if(BUILD_SHARED_LIBS)
  set(thePrinters libqvLog.so.${PROJECT_VERSION}-gdb.py)
  configure_file(${PROJECT_SOURCE_DIR}/packaging/gdb/qvLog-gdb.py ${PROJECT_BINARY_DIR}/${thePrinters} COPYONLY)
  install(FILES ${PROJECT_SOURCE_DIR}/packaging/gdb/qvLog-gdb.py RENAME ${thePrinters}
    DESTINATION ${CMAKE_INSTALL_DATADIR}/gdb/auto-load${CMAKE_INSTALL_FULL_LIBDIR})
endif()

if(QVLOG_INSTALL_DOCUMENTATION)
  install(FILES ${PROJECT_SOURCE_DIR}/docs/man/qvLog.3 DESTINATION ${CMAKE_INSTALL_MANDIR}/man3)
  install(FILES ${PROJECT_SOURCE_DIR}/docs/man/qvLog.ini.5 DESTINATION ${CMAKE_INSTALL_MANDIR}/man5)
  file(GLOB theGuides CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/docs/*.md)
  install(FILES ${PROJECT_SOURCE_DIR}/README.md ${PROJECT_SOURCE_DIR}/CHANGELOG.md
    DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT documentation)
  install(FILES ${theGuides} DESTINATION ${CMAKE_INSTALL_DOCDIR}/docs COMPONENT documentation)
  install(DIRECTORY ${PROJECT_SOURCE_DIR}/examples
    DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT documentation PATTERN CMakeLists.txt EXCLUDE)
endif()
