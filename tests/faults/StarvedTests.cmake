# The unit tests and an experiment, linked so that allocations of the library can be made to fail.

# The library with its allocations redirected to interposed/Starvation.h. Who calls malloc without qvMalloc lives
# on without the memory, and is left alone.
set(theStarvedArchive ${CMAKE_CURRENT_BINARY_DIR}/libqvLog_starved.a)
set(theNew _Znwm)  # operator new
if(CMAKE_SIZEOF_VOID_P EQUAL 4)
  set(theNew _Znwj)
endif()
add_custom_command(OUTPUT ${theStarvedArchive}
  COMMAND ${CMAKE_OBJCOPY}
    --redefine-sym ${theNew}=qvStarved_new --redefine-sym ${theNew}RKSt9nothrow_t=qvStarved_newNothrow
    $<TARGET_FILE:qvLog_archive> ${theStarvedArchive}
  COMMAND ${CMAKE_AR} x ${theStarvedArchive} qvMalloc.cpp.o
  COMMAND ${CMAKE_OBJCOPY} --redefine-sym malloc=qvStarved_malloc --redefine-sym realloc=qvStarved_realloc
    --redefine-sym strdup=qvStarved_strdup qvMalloc.cpp.o
  COMMAND ${CMAKE_AR} r ${theStarvedArchive} qvMalloc.cpp.o
  DEPENDS qvLog_archive VERBATIM)
add_custom_target(qvLog_starved_archive DEPENDS ${theStarvedArchive})
add_library(qvLog_starvation OBJECT ${PROJECT_SOURCE_DIR}/tests/interposed/Starvation.cpp)
target_link_libraries(qvLog_starvation PUBLIC qvLog_test_support)

# Links a program with that library. It comes before the other, of which nothing is left to be taken then.
function(starve aTarget)
  add_dependencies(${aTarget} qvLog_starved_archive)
  target_link_libraries(${aTarget} PRIVATE qvLog_starvation
    -Wl,--start-group $<TARGET_FILE:qvLog_test_support> ${theStarvedArchive} -Wl,--end-group)
endfunction()

# Each unit test once more, starved, under its own name, since settings are found by it. All of them at night, at
# merge those of the settings.
set(theStarvedFolder ${CMAKE_CURRENT_BINARY_DIR}/starved)
cmake_path(GET CMAKE_CURRENT_BINARY_DIR PARENT_PATH theTestsFolder)
set(theMergePattern "INI|Config|qvDictionary")
add_custom_target(starved_tests_merge)
add_custom_target(starved_tests_night)
foreach(theSource ${QVLOG_TEST_SOURCES})
  cmake_path(GET theSource STEM theName)
  if(theSource MATCHES "^tools/")
    continue()  # the collector is a program of its own and allocates as such programs do
  endif()
  add_executable(${theName}_starved EXCLUDE_FROM_ALL $<TARGET_OBJECTS:${theName}>)
  set_target_properties(${theName}_starved PROPERTIES LINKER_LANGUAGE CXX
    OUTPUT_NAME ${theName} RUNTIME_OUTPUT_DIRECTORY ${theStarvedFolder})
  starve(${theName}_starved)
  get_target_property(theLibraries ${theName} LINK_LIBRARIES)
  target_link_libraries(${theName}_starved PRIVATE ${theLibraries})
  get_target_property(theOptions ${theName} LINK_OPTIONS)
  if(theOptions)
    target_link_options(${theName}_starved PRIVATE ${theOptions})
  endif()
  get_target_property(theDependencies ${theName} MANUALLY_ADDED_DEPENDENCIES)
  if(theDependencies)
    add_dependencies(${theName}_starved ${theDependencies})
  endif()
  file(COPY ${theTestsFolder}/qvLog.${theName}.ini DESTINATION ${theStarvedFolder})
  add_dependencies(starved_tests_night ${theName}_starved)
  if(theName MATCHES ${theMergePattern})
    add_dependencies(starved_tests_merge ${theName}_starved)
  endif()
endforeach()

target_compile_definitions(outofmemory_experiment PRIVATE
  QVLOG_STARVED_TESTS="${theStarvedFolder}" QVLOG_STARVED_AT_MERGE="${theMergePattern}")
starve(outofmemory_experiment)
