# Paths are relative to this folder.
set(wire_sources
  Base64.cpp
  CRCDivision.cpp
  Descriptor.cpp)

# The system's base64 codec.
if(CMAKE_SYSTEM_NAME STREQUAL "QNX")
  set(wire_libraries socket)
else()
  set(wire_libraries resolv)
endif()
