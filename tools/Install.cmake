# Both programs, their manual pages, the units of the collector, and examples for what works with it.

set(CMAKE_INSTALL_DEFAULT_COMPONENT_NAME collector)

# An installed tree may be moved: the programs find the library beside themselves.
set_target_properties(qvlogd PROPERTIES
  INSTALL_RPATH "$ORIGIN/../${CMAKE_INSTALL_LIBDIR}")
set_target_properties(qvlogcat PROPERTIES
  INSTALL_RPATH "$ORIGIN/../${CMAKE_INSTALL_LIBDIR}")
install(TARGETS qvlogd RUNTIME DESTINATION ${CMAKE_INSTALL_SBINDIR})
install(TARGETS qvlogcat RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})

if(QVLOG_INSTALL_DOCUMENTATION)
  foreach(thePage qvlogcat.1 qvlogd.ini.5 qvlogd.8)
    string(REGEX MATCH ".$" theSection ${thePage})
    install(FILES ${PROJECT_SOURCE_DIR}/docs/man/${thePage} DESTINATION ${CMAKE_INSTALL_MANDIR}/man${theSection})
  endforeach()
endif()
install(FILES ${PROJECT_SOURCE_DIR}/packaging/completions/qvlogd ${PROJECT_SOURCE_DIR}/packaging/completions/qvlogcat
  DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)

set(QVLOG_UNIT_DIR lib/systemd/system CACHE STRING "Where the units of the service manager go")
configure_file(${PROJECT_SOURCE_DIR}/packaging/systemd/qvlogd.service.in
  ${PROJECT_BINARY_DIR}/qvlogd.service @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/qvlogd.service ${PROJECT_SOURCE_DIR}/packaging/systemd/qvlogd.socket
  DESTINATION ${QVLOG_UNIT_DIR})

set(QVLOG_COLLECTOR_DOCDIR ${CMAKE_INSTALL_DOCDIR} CACHE STRING "Where the examples for other log engines go")
install(FILES ${PROJECT_SOURCE_DIR}/packaging/systemd/journal.conf
  DESTINATION ${QVLOG_COLLECTOR_DOCDIR}/examples/systemd)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/packaging/rsyslog ${PROJECT_SOURCE_DIR}/packaging/syslog-ng
  ${PROJECT_SOURCE_DIR}/packaging/logrotate ${PROJECT_SOURCE_DIR}/packaging/lnav
  DESTINATION ${QVLOG_COLLECTOR_DOCDIR}/examples)
