# QNX Neutrino 6.5 on ARMv7, little-endian, with the compiler that the tool kit's environment names. See
# docs/porting.md for what that compiler has to be.
#
# QNX_HOST, QNX_TARGET     the tool kit, as its own environment script sets them
# PRODUCTION_QNX_CXX       the C++ compiler, when it is another than the tool kit's ntoarmv7-g++; a driver
#                          named q++ or qcc is told its target (PRODUCTION_QNX_VARIANT) with -V
# PRODUCTION_QNX_VARIANT   that target; gcc_ntoarmv7le when it is not set
set(CMAKE_SYSTEM_NAME QNX)
set(CMAKE_SYSTEM_VERSION 6.5.0)
set(CMAKE_SYSTEM_PROCESSOR armv7)

foreach(variable QNX_HOST QNX_TARGET)
  if(NOT IS_DIRECTORY "$ENV{${variable}}")
    message(FATAL_ERROR
      "${variable} is not set to a folder: run the QNX tool kit's environment script first")
  endif()
endforeach()
set(qnx_host "$ENV{QNX_HOST}")
set(qnx_target "$ENV{QNX_TARGET}")

if(DEFINED ENV{PRODUCTION_QNX_CXX})
  set(CMAKE_CXX_COMPILER "$ENV{PRODUCTION_QNX_CXX}")
else()
  find_program(PRODUCTION_QNX_COMPILER NAMES ntoarmv7-g++ arm-unknown-nto-qnx6.5.0eabi-g++
    HINTS "${qnx_host}/usr/bin" NO_CMAKE_FIND_ROOT_PATH)
  if(NOT PRODUCTION_QNX_COMPILER)
    message(FATAL_ERROR
      "There is no ntoarmv7-g++ in ${qnx_host}/usr/bin: name the compiler in PRODUCTION_QNX_CXX")
  endif()
  set(CMAKE_CXX_COMPILER "${PRODUCTION_QNX_COMPILER}")
endif()

get_filename_component(qnx_driver "${CMAKE_CXX_COMPILER}" NAME_WE)
if(qnx_driver MATCHES "^(q\\+\\+|qcc|QCC)$")
  set(CMAKE_CXX_COMPILER_TARGET gcc_ntoarmv7le)
  if(DEFINED ENV{PRODUCTION_QNX_VARIANT})
    set(CMAKE_CXX_COMPILER_TARGET "$ENV{PRODUCTION_QNX_VARIANT}")
  endif()
endif()

# A language without extensions hides what this system has beyond it; files have 64-bit sizes throughout.
set(CMAKE_CXX_FLAGS_INIT "-D_QNX_SOURCE -D_LARGEFILE64_SOURCE -D_FILE_OFFSET_BITS=64")

# Libraries and headers come from the tool kit, programs that run during the build from this machine.
set(CMAKE_FIND_ROOT_PATH "${qnx_target}/armle-v7" "${qnx_target}")
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
