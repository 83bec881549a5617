# How tests run that were built for another machine: each program gets a script of its own name in
# ${EMULATED_PROGRAMS}, which runs it in the emulator. Whatever starts a program of that machine starts its
# script, and a program that starts itself again does so too, because the script's name is its own name there.
set(EMULATED_PROGRAMS ${CMAKE_BINARY_DIR}/emulated)

set(EMULATION_EXCEPTIONS ${CMAKE_SOURCE_DIR}/tests/emulation_exceptions.txt)
set_property(DIRECTORY ${CMAKE_SOURCE_DIR} APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${EMULATION_EXCEPTIONS})

# Makes the target's script.
function(emulate target)
  string(JOIN " " emulator ${CMAKE_CROSSCOMPILING_EMULATOR})
  file(GENERATE OUTPUT ${EMULATED_PROGRAMS}/${target}
    CONTENT "#!/bin/sh\nexec ${emulator} -0 \"$0\" \"$<TARGET_FILE:${target}>\" \"$@\"\n"
    FILE_PERMISSIONS
      OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
endfunction()

# Sets FILTER to GoogleTest's filter of the program's cases that can be emulated; "-*" when none can.
function(emulation_filter program filter)
  file(STRINGS ${EMULATION_EXCEPTIONS} lines REGEX "^${program} ")
  set(patterns)
  foreach(line IN LISTS lines)
    string(REGEX REPLACE "^[^ ]+ +([^ ]+).*$" "\\1" pattern "${line}")
    list(APPEND patterns "${pattern}")
  endforeach()
  string(JOIN ":" joined ${patterns})
  set(${filter} "-${joined}" PARENT_SCOPE)
endfunction()
