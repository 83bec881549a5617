# Debian's cross compiler for an ARMv7 board: hard floating point, tuned for Cortex-A9. There are Cortex-A9
# without NEON and with sixteen floating-point registers only, so no more than these are used.
# "scripts/prepare armv7" installs what this file names.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR armv7l)

set(triplet arm-linux-gnueabihf)
set(CMAKE_CXX_COMPILER ${triplet}-g++)
set(CMAKE_CXX_FLAGS_INIT "-mcpu=cortex-a9 -mfpu=vfpv3-d16 -mfloat-abi=hard -Wno-psabi")
set(CMAKE_LIBRARY_ARCHITECTURE ${triplet})

# The compiler's own packages hold no zlib and no libpng for the board: Debian's packages for it are unpacked
# there.
get_filename_component(unpacked ${CMAKE_CURRENT_LIST_DIR}/../../build/sysroot-armhf ABSOLUTE)
if(NOT EXISTS ${unpacked}/usr/include/zlib.h OR NOT EXISTS ${unpacked}/usr/include/png.h)
  message(FATAL_ERROR "${unpacked} is missing: run scripts/prepare armv7")
endif()
set(ZLIB_INCLUDE_DIR ${unpacked}/usr/include CACHE PATH "zlib of the board")
set(ZLIB_LIBRARY ${unpacked}/lib/${triplet}/libz.so.1 CACHE FILEPATH "zlib of the board")
set(PNG_PNG_INCLUDE_DIR ${unpacked}/usr/include CACHE PATH "libpng of the board")
set(PNG_LIBRARY ${unpacked}/usr/lib/${triplet}/libpng16.so.16 CACHE FILEPATH "libpng of the board")

# Programs that are run here find them there, and with the old kind of path libpng finds zlib, too.
set(CMAKE_EXE_LINKER_FLAGS_INIT "-Wl,--disable-new-dtags")

# Libraries are the board's; programs are this machine's, and so are packages of headers alone.
set(CMAKE_FIND_ROOT_PATH /usr/${triplet} ${unpacked})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE BOTH)

set(CMAKE_CROSSCOMPILING_EMULATOR qemu-arm -L /usr/${triplet})
