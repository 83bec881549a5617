# That the daemon carries its usage, with the zero byte of a text's end, where tools find it without running it.
#
#   cmake -DOBJCOPY=... -DPROGRAM=... -DEXPECTED=... -DSECTION=... -P UsageSectionTest.cmake
file(REMOVE ${SECTION})
execute_process(COMMAND ${OBJCOPY} -O binary --only-section=.usage ${PROGRAM} ${SECTION} RESULT_VARIABLE result)
if(NOT result EQUAL 0)
  message(FATAL_ERROR "${OBJCOPY}: ${result}")
endif()
file(READ ${SECTION} found HEX)
file(READ ${EXPECTED} expected HEX)
if(NOT found STREQUAL "${expected}00")
  file(READ ${SECTION} text)
  message(FATAL_ERROR "The section holds: ${text}")
endif()
