# The commands, in a unit that is played: the linker puts it between them and the system, whose calls have other names
# where files and times are wider than the machine's words, and its half of the seam in the place of the system's.
if(CMAKE_CROSSCOMPILING)
  return()
endif()
add_library(fuzz_unit OBJECT
  support/CommandRun.cpp
  support/ErrorText.cpp
  support/RequestMaker.cpp
  support/UnitClock.cpp
  support/UnitDrivers.cpp
  support/UnitFiles.cpp
  support/UnitTools.cpp)
target_include_directories(fuzz_unit PUBLIC ${CMAKE_CURRENT_SOURCE_DIR})
target_link_libraries(fuzz_unit
  PUBLIC station_client production_frontends headunit_devices
  PRIVATE ZLIB::ZLIB project_warnings)
set(wrapped open access stat lstat unlink remove gzopen tcgetattr tcsetattr tcflush poll
  _ZNSt6chrono3_V212steady_clock3nowEv)
list(TRANSFORM wrapped PREPEND --wrap=)
list(JOIN wrapped "," wrapped)
target_link_options(fuzz_unit INTERFACE LINKER:${wrapped})

add_fuzz_target(frame_command_fuzzer
  SOURCES frame_command_fuzzer.cpp
  LIBRARIES fuzz_unit)
foreach(subject command_forms line_command)
  add_fuzz_target(${subject}_fuzzer
    SOURCES ${subject}_fuzzer.cpp support/LineMutator.cpp
    LIBRARIES fuzz_unit)
endforeach()
