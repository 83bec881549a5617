# What the station's client reads and writes.
foreach(subject answer client target unit_frame)
  add_fuzz_target(${subject}_fuzzer
    SOURCES ${subject}_fuzzer.cpp
    LIBRARIES station_client)
endforeach()
add_fuzz_target(quoting_fuzzer
  SOURCES quoting_fuzzer.cpp
  LIBRARIES station_client production_frontends)
