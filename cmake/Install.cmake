# Headers, library, the CMake package qvLog and qvLog.pc.

include(CMakePackageConfigHelpers)

install(TARGETS qvLog EXPORT qvLogTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
foreach(theRoom qvLog qv qvraTools qvOS)
  install(DIRECTORY ${PROJECT_SOURCE_DIR}/${theRoom} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
    FILES_MATCHING PATTERN "*.h" PATTERN "*_p.h" EXCLUDE
    # Sources of the layers live in folders of their own; none of them holds a public header.
    PATTERN "posix" EXCLUDE PATTERN "multiplatform" EXCLUDE PATTERN "generic" EXCLUDE)
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
file(RELATIVE_PATH QVLOG_PREFIX_FROM_PC /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
configure_file(${PROJECT_SOURCE_DIR}/packaging/qvLog.pc.in ${PROJECT_BINARY_DIR}/qvLog.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/qvLog.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
