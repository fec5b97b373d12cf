# Each layer has its own GoogleTest program, linked against that layer and the
# shared test support (the recording platform and the test main) only, so a
# test cannot reach a layer above the one it tests. The tests run from the
# program directory, where the generated data files are.
if(ORV_BUILD_TESTS)
  enable_testing()
  find_package(GTest REQUIRED)
  include(GoogleTest)
endif()

# orv_tests(NAME [OWN_MAIN] [WINDOWS] LIBRARIES lib... SOURCES file...); OWN_MAIN
# for programs whose sources bring their own main (the Qt tests need an
# application). WINDOWS for tests that show windows: they share one X server
# and its keyboard focus, so they run one at a time.
function(orv_tests name)
  if(NOT ORV_BUILD_TESTS)
    return()
  endif()
  cmake_parse_arguments(T "OWN_MAIN;WINDOWS" "" "LIBRARIES;SOURCES" ${ARGN})
  set(extra "")
  if(T_WINDOWS)
    set(extra RESOURCE_LOCK xdisplay)
  endif()
  add_executable(${name} ${T_SOURCES})
  target_link_libraries(${name} PRIVATE ${T_LIBRARIES} orv_testplatform)
  if(NOT T_OWN_MAIN)
    target_link_libraries(${name} PRIVATE orv_testmain)
  endif()
  add_dependencies(${name} orvane-data)
  gtest_discover_tests(${name}
    WORKING_DIRECTORY ${ORV_BIN_DIR}
    DISCOVERY_TIMEOUT 60
    PROPERTIES ENVIRONMENT "ORV_BIN_DIR=${ORV_BIN_DIR};ORV_SOURCE_DIR=${CMAKE_SOURCE_DIR}" ${extra})
endfunction()
