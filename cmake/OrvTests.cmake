# All core tests build into one GoogleTest program; each subsystem adds its
# test sources with orv_core_tests(). The tests run from the program directory,
# where the generated data files are.
if(ORV_BUILD_TESTS)
  enable_testing()
  find_package(GTest REQUIRED)
  include(GoogleTest)
  add_executable(orvcore-tests)
  target_link_libraries(orvcore-tests PRIVATE orvcore GTest::gtest GTest::gmock)
endif()

function(orv_core_tests)
  if(ORV_BUILD_TESTS)
    target_sources(orvcore-tests PRIVATE ${ARGN})
  endif()
endfunction()

function(orv_finish_tests)
  add_dependencies(orvcore-tests orvane-data)
  gtest_discover_tests(orvcore-tests
    WORKING_DIRECTORY ${ORV_BIN_DIR}
    DISCOVERY_TIMEOUT 60
    PROPERTIES ENVIRONMENT "ORV_BIN_DIR=${ORV_BIN_DIR};ORV_SOURCE_DIR=${CMAKE_SOURCE_DIR}")
endfunction()
