# The package <package>-dbgsym beside the package of a component: the debug information that is stripped from its
# programs and libraries, where debuggers look for it by the build id.

function(qvlog_debug_symbols aComponent)
  string(TOUPPER ${aComponent} theName)
  set(thePackage ${CPACK_DEBIAN_${theName}_PACKAGE_NAME})
  foreach(theTarget ${ARGN})
    install(CODE "set(theFile \"$<TARGET_FILE:${theTarget}>\")" COMPONENT ${aComponent}_symbols EXCLUDE_FROM_ALL)
    install(SCRIPT ${PROJECT_SOURCE_DIR}/cmake/InstallDebugSymbols.cmake COMPONENT ${aComponent}_symbols
      EXCLUDE_FROM_ALL)
  endforeach()
  set(CPACK_COMPONENTS_ALL ${CPACK_COMPONENTS_ALL} ${aComponent}_symbols PARENT_SCOPE)
  set(CPACK_DEBIAN_${theName}_SYMBOLS_PACKAGE_NAME ${thePackage}-dbgsym PARENT_SCOPE)
  set(CPACK_DEBIAN_${theName}_SYMBOLS_PACKAGE_SECTION debug PARENT_SCOPE)
  set(CPACK_DEBIAN_${theName}_SYMBOLS_PACKAGE_DEPENDS "${thePackage} (= ${theExactVersion})" PARENT_SCOPE)
  set(CPACK_DEBIAN_${theName}_SYMBOLS_DESCRIPTION "debug symbols for ${thePackage}
Names, types and line numbers for debuggers and profilers, which find them by
the build id of the program or library." PARENT_SCOPE)
endfunction()
