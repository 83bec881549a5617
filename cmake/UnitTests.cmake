include(GoogleTest)

# add_unit_test(NAME SOURCES ... DEPENDS ...): a GoogleTest program whose cases are CTest tests with the
# label 'unit'.
function(add_unit_test name)
  cmake_parse_arguments(TEST "" "" "SOURCES;DEPENDS" ${ARGN})
  add_executable(${name} ${TEST_SOURCES})
  target_link_libraries(${name} PRIVATE ${TEST_DEPENDS} GTest::gmock_main project_warnings)
  gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST PROPERTIES LABELS unit)
endfunction()

# add_integration_test(NAME SOURCES ... DEPENDS ... [LABELS ...]): like a unit test, but each case runs
# inside a simulated unit of its own, with a network of its own; the label is 'integration'.
function(add_integration_test name)
  cmake_parse_arguments(TEST "" "" "SOURCES;DEPENDS;LABELS" ${ARGN})
  add_executable(${name} ${TEST_SOURCES})
  target_link_libraries(${name} PRIVATE ${TEST_DEPENDS} GTest::gmock_main project_warnings)
  add_dependencies(${name} production headunit station)
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
