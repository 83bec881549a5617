include(GoogleTest)
if(CMAKE_CROSSCOMPILING)
  include(Emulation)
endif()

# Reading these headers takes longer than most tests take to be compiled, so that is done once for all of them.
# What a test uses it includes nevertheless: lint reads it without them.
add_library(test_headers STATIC ${CMAKE_SOURCE_DIR}/tests/TestHeaders.cpp)
target_link_libraries(test_headers PRIVATE GTest::gmock project_warnings)
target_precompile_headers(test_headers PRIVATE
  <gmock/gmock.h> <gtest/gtest.h>
  <algorithm> <atomic> <chrono> <filesystem> <fstream> <functional> <map> <memory> <optional> <sstream> <string>
  <thread> <vector>)

# add_unit_test(NAME SOURCES ... DEPENDS ...): a GoogleTest program whose cases are CTest tests with the
# label 'unit'. Under an emulator, which takes longer to start than a case to run, the program is one test.
function(add_unit_test name)
  cmake_parse_arguments(TEST "" "" "SOURCES;DEPENDS" ${ARGN})
  add_executable(${name} ${TEST_SOURCES})
  target_link_libraries(${name} PRIVATE ${TEST_DEPENDS} GTest::gmock_main project_warnings)
  target_precompile_headers(${name} REUSE_FROM test_headers)
  if(NOT CMAKE_CROSSCOMPILING)
    gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST PROPERTIES LABELS unit)
    return()
  endif()
  emulation_filter(${name} filter)
  if(filter STREQUAL "-*")
    set_target_properties(${name} PROPERTIES EXCLUDE_FROM_ALL ON)
    return()
  endif()
  emulate(${name})
  add_test(NAME ${name} COMMAND ${EMULATED_PROGRAMS}/${name} --gtest_filter=${filter})
  set_tests_properties(${name} PROPERTIES LABELS unit)
endfunction()

# add_integration_test(NAME SOURCES ... DEPENDS ... [LABELS ...]): like a unit test, but each case runs
# inside a simulated unit of its own, with a network of its own; the label is 'integration'.
function(add_integration_test name)
  cmake_parse_arguments(TEST "" "" "SOURCES;DEPENDS;LABELS" ${ARGN})
  add_executable(${name} ${TEST_SOURCES})
  target_link_libraries(${name} PRIVATE ${TEST_DEPENDS} GTest::gmock_main project_warnings)
  target_precompile_headers(${name} REUSE_FROM test_headers)
  add_dependencies(${name} production headunit station)
  if(CMAKE_CROSSCOMPILING)
    set_target_properties(${name} PROPERTIES EXCLUDE_FROM_ALL ON)
    return()
  endif()
  set_target_properties(${name} PROPERTIES
    CROSSCOMPILING_EMULATOR "$<TARGET_FILE:headunit>;exec;--")
  gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST)
  # A list of labels does not survive its way through the discovery, so it is set once the tests are known.
  set(all_labels integration ${TEST_LABELS})
  set(labels ${CMAKE_CURRENT_BINARY_DIR}/${name}_labels.cmake)
  file(WRITE ${labels} "if(${name}_TESTS)
  set_tests_properties(\${${name}_TESTS} PROPERTIES LABELS \"${all_labels}\")
endif()
")
  set_property(DIRECTORY APPEND PROPERTY TEST_INCLUDE_FILES ${labels})
endfunction()

# Sets VARIABLE to the path by which tests start the finished program TARGET.
function(path_of_program target variable)
  if(CMAKE_CROSSCOMPILING)
    emulate(${target})
    set(${variable} ${EMULATED_PROGRAMS}/${target} PARENT_SCOPE)
  else()
    set(${variable} "$<TARGET_FILE:${target}>" PARENT_SCOPE)
  endif()
endfunction()
