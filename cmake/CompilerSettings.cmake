# What every target of this build is compiled with: the interface target qvLog_settings.

add_library(qvLog_settings INTERFACE)
target_compile_options(qvLog_settings INTERFACE
  -Wall -Wextra -Wpedantic -Wformat=2 -Wno-format-nonliteral -Wundef
  # A note of GCC about an old change of the calling convention on ARM; nothing here crosses it.
  $<$<CXX_COMPILER_ID:GNU>:-Wno-psabi>
  # No path of the build machine gets into a binary: __FILE__ and debug information are relative.
  -ffile-prefix-map=${PROJECT_SOURCE_DIR}/=
  -ffile-prefix-map=${PROJECT_BINARY_DIR}/=
  $<$<BOOL:${QVLOG_WARNINGS_AS_ERRORS}>:-Werror>)
# Large files on 32-bit targets. The system's own declarations of GNU and POSIX calls are on in C++ anyway.
target_compile_definitions(qvLog_settings INTERFACE _FILE_OFFSET_BITS=64)

if(QVLOG_SANITIZE)
  target_compile_options(qvLog_settings INTERFACE
    -fsanitize=${QVLOG_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(qvLog_settings INTERFACE -fsanitize=${QVLOG_SANITIZE})
endif()

if(QVLOG_COVERAGE)
  target_compile_options(qvLog_settings INTERFACE --coverage -fprofile-update=atomic)
  target_link_options(qvLog_settings INTERFACE --coverage)
endif()
