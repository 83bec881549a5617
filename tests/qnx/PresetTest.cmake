# Configures the preset `qnx` with a stand-in for the tool kit: this machine's compiler under the name of the
# tool kit's, which finds this folder's declarations of the system. Run with
#
#   cmake -DSOURCE=... -DWORK=... -DCOMPILER=... -P PresetTest.cmake
file(REMOVE_RECURSE ${WORK})
set(host ${WORK}/host)
set(target ${WORK}/target)
set(compiler ${host}/usr/bin/ntoarmv7-g++)
file(MAKE_DIRECTORY ${target}/usr/include ${target}/armle-v7/usr/lib)
file(WRITE ${compiler} "#!/bin/sh\nexec ${COMPILER} -isystem ${CMAKE_CURRENT_LIST_DIR}/include \"$@\"\n")
file(CHMOD ${compiler} PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE)
set(usemsg ${host}/usr/bin/usemsg)
file(CREATE_LINK /usr/include/zlib.h ${target}/usr/include/zlib.h SYMBOLIC)
file(WRITE ${target}/armle-v7/usr/lib/libz.a "!<arch>\n")

# configure(VARIABLE=VALUE ...): what CMake says then is in `output`, and how it ended in `result`.
macro(configure)
  execute_process(
    COMMAND ${CMAKE_COMMAND} -E env --unset=PRODUCTION_QNX_CXX --unset=PRODUCTION_QNX_VARIANT ${ARGN}
      ${CMAKE_COMMAND} --preset qnx -B ${WORK}/build
    WORKING_DIRECTORY ${SOURCE}
    RESULT_VARIABLE result
    OUTPUT_VARIABLE output
    ERROR_VARIABLE output)
  string(REGEX REPLACE "[ \n]+" " " output "${output}") # CMake breaks its lines
endmacro()

function(expect text where)
  string(FIND "${${where}}" "${text}" at)
  if(at EQUAL -1)
    message(SEND_ERROR "'${text}' is missing in ${where}:\n${${where}}")
  endif()
endfunction()

function(expect_none text where)
  string(FIND "${${where}}" "${text}" at)
  if(NOT at EQUAL -1)
    message(SEND_ERROR "'${text}' stands in ${where}")
  endif()
endfunction()

# What is `missing` is told with `text`; where to look for it follows.
function(expect_refusal missing text)
  configure(${ARGN})
  if(result EQUAL 0)
    message(SEND_ERROR "Configured without ${missing}")
  endif()
  expect("${text}" output)
  file(REMOVE_RECURSE ${WORK}/build)
endfunction()

expect_refusal("a tool kit" "QNX_HOST is not set to a folder" --unset=QNX_HOST QNX_TARGET=${target})
expect_refusal("a compiler" "name the compiler in PRODUCTION_QNX_CXX" QNX_HOST=${WORK} QNX_TARGET=${target})
expect_refusal("a tool for usage records" "There is no usemsg in ${host}/usr/bin" QNX_HOST=${host} QNX_TARGET=${target})

file(WRITE ${usemsg} "#!/bin/sh\n")
file(CHMOD ${usemsg} PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE)
configure(QNX_HOST=${host} QNX_TARGET=${target})
if(NOT result EQUAL 0)
  message(FATAL_ERROR "The preset does not configure:\n${output}")
endif()
file(READ ${WORK}/build/compile_commands.json commands)
expect("platform/qnx/Shell.cpp" commands)
expect("core/main.cpp" commands)
expect("${compiler} " commands)
expect("-D_QNX_SOURCE -D_LARGEFILE64_SOURCE -D_FILE_OFFSET_BITS=64" commands)
expect("-std=c++17" commands)
expect_none("platform/linux/" commands)
expect_none("headunit/" commands)

file(READ ${WORK}/build/build.ninja steps)
expect("${usemsg} ${WORK}/build/bin/production ${SOURCE}/production/core/production.use" steps)
