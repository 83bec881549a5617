# What the simulated unit reads of the daemon, of its user and of its files; and the daemon's own reader of pictures.
add_fuzz_target(modem_fuzzer
  SOURCES modem_fuzzer.cpp
  LIBRARIES headunit_devices)
if(NOT CMAKE_CROSSCOMPILING)
  # These have nodes and lines of this machine's kernel.
  add_fuzz_target(control_fuzzer
    SOURCES control_fuzzer.cpp
    LIBRARIES headunit_control)
  add_fuzz_target(manager_fuzzer
    SOURCES manager_fuzzer.cpp
    LIBRARIES headunit_devices)
endif()
add_fuzz_target(bitmap_fuzzer
  SOURCES bitmap_fuzzer.cpp
  LIBRARIES headunit_pictures)
add_fuzz_target(display_state_fuzzer
  SOURCES display_state_fuzzer.cpp
  LIBRARIES headunit_displays)
add_fuzz_target(picture_file_fuzzer
  SOURCES picture_file_fuzzer.cpp support/ErrorText.cpp
  LIBRARIES production_commands ZLIB::ZLIB)
