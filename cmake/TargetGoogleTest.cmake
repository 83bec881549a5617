# GoogleTest for another machine than this one, from the sources of Debian's package googletest: its
# libraries are built for this machine only.
set(GOOGLETEST_SOURCE /usr/src/googletest CACHE PATH "The sources of GoogleTest")
if(NOT EXISTS ${GOOGLETEST_SOURCE}/googlemock/src/gmock-all.cc)
  message(FATAL_ERROR "There is no GoogleTest in ${GOOGLETEST_SOURCE}: install the package googletest")
endif()

add_library(gtest STATIC ${GOOGLETEST_SOURCE}/googletest/src/gtest-all.cc)
target_include_directories(gtest SYSTEM PUBLIC ${GOOGLETEST_SOURCE}/googletest/include)
target_include_directories(gtest PRIVATE ${GOOGLETEST_SOURCE}/googletest)
target_link_libraries(gtest PUBLIC Threads::Threads)

add_library(gmock STATIC ${GOOGLETEST_SOURCE}/googlemock/src/gmock-all.cc)
target_include_directories(gmock SYSTEM PUBLIC ${GOOGLETEST_SOURCE}/googlemock/include)
target_include_directories(gmock PRIVATE ${GOOGLETEST_SOURCE}/googlemock)
target_link_libraries(gmock PUBLIC gtest)

add_library(gmock_main STATIC ${GOOGLETEST_SOURCE}/googlemock/src/gmock_main.cc)
target_link_libraries(gmock_main PUBLIC gmock)

foreach(library gtest gmock gmock_main)
  target_compile_options(${library} PRIVATE -w)
  add_library(GTest::${library} ALIAS ${library})
endforeach()
