# Debian packages, made by CPack out of the components that are installed. scripts/package builds them as the
# distribution would.

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME qvlog)
set(CPACK_PACKAGE_VENDOR "The developers of libqvLog")
set(CPACK_PACKAGE_CONTACT "The developers of libqvLog <qvlog@qvlog.invalid>" CACHE STRING
  "Who answers for the packages, with an address")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL library development)
set(CPACK_COMPONENTS_GROUPING IGNORE)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_STRIP_FILES ON)
set(theExactVersion "${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE}")

set(CPACK_DEBIAN_LIBRARY_PACKAGE_NAME libqvlog${PROJECT_VERSION_MAJOR})
set(CPACK_DEBIAN_LIBRARY_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_LIBRARY_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_LIBRARY_DESCRIPTION "logging framework and portable toolkit (shared library)
One way to log for every process of a device: levels, modules and outputs that
are switched at run time in an INI file. Beneath it lies a toolkit in C and
C++: crash-safe settings, shared strings, Unicode, number parsing, formatting,
time, files and locks.")

# Which package a program needs that is linked with the library, and that the linker's cache is made anew.
file(WRITE ${PROJECT_BINARY_DIR}/debian/shlibs
  "libqvLog ${PROJECT_VERSION_MAJOR} ${CPACK_DEBIAN_LIBRARY_PACKAGE_NAME} (>= ${PROJECT_VERSION})\n")
file(WRITE ${PROJECT_BINARY_DIR}/debian/triggers "activate-noawait ldconfig\n")
set(CPACK_DEBIAN_LIBRARY_PACKAGE_CONTROL_EXTRA
  ${PROJECT_BINARY_DIR}/debian/shlibs ${PROJECT_BINARY_DIR}/debian/triggers)

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libqvlog-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "${CPACK_DEBIAN_LIBRARY_PACKAGE_NAME} (= ${theExactVersion})")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SUGGESTS libqvlog-doc)
set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION "logging framework and portable toolkit (development files)
Headers, the static library, the CMake package qvLog and the description for
pkg-config.")

if(QVLOG_BUILD_TOOLS)
  list(APPEND CPACK_COMPONENTS_ALL collector)
  set(CPACK_DEBIAN_COLLECTOR_PACKAGE_NAME qvlogd)
  set(CPACK_DEBIAN_COLLECTOR_PACKAGE_SECTION admin)
  set(CPACK_DEBIAN_COLLECTOR_PACKAGE_SHLIBDEPS ON)
  # What the programs need of the system, and the library, which is not installed while they are packed.
  set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR})
  set(CPACK_DEBIAN_COLLECTOR_PACKAGE_DEPENDS "${CPACK_DEBIAN_LIBRARY_PACKAGE_NAME} (= ${theExactVersion})")
  set(CPACK_DEBIAN_COLLECTOR_PACKAGE_SUGGESTS "lnav, rsyslog | syslog-ng")
    set(CPACK_DEBIAN_COLLECTOR_DESCRIPTION "collector of the log lines of all processes, and its viewer
qvlogd takes the lines that processes send with libqvlog, writes them to files
that rotate or passes them on to a syslog engine, and keeps a ledger of what
each process sent and lost. qvlogcat shows, filters and follows them.")
  set(theScripts ${PROJECT_SOURCE_DIR}/packaging/debian)
  set(CPACK_DEBIAN_COLLECTOR_PACKAGE_CONTROL_EXTRA
    ${theScripts}/qvlogd/postinst ${theScripts}/qvlogd/prerm ${theScripts}/qvlogd/postrm)
endif()

if(QVLOG_INSTALL_DOCUMENTATION)
  list(APPEND CPACK_COMPONENTS_ALL documentation)
  set(CPACK_DEBIAN_DOCUMENTATION_PACKAGE_NAME libqvlog-doc)
  set(CPACK_DEBIAN_DOCUMENTATION_PACKAGE_SECTION doc)
  set(CPACK_DEBIAN_DOCUMENTATION_PACKAGE_ARCHITECTURE all)
    set(CPACK_DEBIAN_DOCUMENTATION_DESCRIPTION "logging framework and portable toolkit (documentation)
Guides, a page for each file format and protocol, and example programs.")
endif()

include(cmake/DebugSymbols.cmake)
qvlog_debug_symbols(library qvLog)
if(QVLOG_BUILD_TOOLS)
  qvlog_debug_symbols(collector qvlogd qvlogcat)
endif()

# What the policy asks of every package beyond the files of the project.
set(QVLOG_PACKAGING_DEBIAN ${PROJECT_SOURCE_DIR}/packaging/debian)
configure_file(${PROJECT_SOURCE_DIR}/packaging/debian/StagePackages.cmake.in
  ${PROJECT_BINARY_DIR}/StagePackages.cmake @ONLY)
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_BINARY_DIR}/StagePackages.cmake)

include(CPack)
