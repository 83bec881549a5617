# What the seam is made of: what all systems share, and the half that each has of its own. Paths are
# relative to this folder.
set(platform_shared
  posix/DriverLibrary.cpp
  posix/EndedChildren.cpp
  posix/Node.cpp
  posix/Readiness.cpp
  posix/ShellInput.cpp
  posix/StandardStreams.cpp)

set(platform_linux
  linux/BlockDevice.cpp
  linux/CommandLine.cpp
  linux/Descriptors.cpp
  linux/DeviceManager.cpp
  linux/DriverLibraryMode.cpp
  linux/I2cDriver.cpp
  linux/ManagerSocket.cpp
  linux/Memory.cpp
  linux/NetworkStack.cpp
  linux/NodeCalls.cpp
  linux/PathWait.cpp
  linux/ProcessTree.cpp
  linux/Shell.cpp
  linux/ShellStart.cpp
  linux/Terminal.cpp
  linux/ThreadTraits.cpp)
set(platform_linux_libraries ${CMAKE_DL_LIBS})

set(platform_qnx
  qnx/BlockDevice.cpp
  qnx/CloseOnExec.cpp
  qnx/CommandLine.cpp
  qnx/Descriptors.cpp
  qnx/DeviceManager.cpp
  qnx/DriverLibraryMode.cpp
  qnx/Memory.cpp
  qnx/NetworkStack.cpp
  qnx/NodeCalls.cpp
  qnx/PathWait.cpp
  qnx/Shell.cpp
  qnx/Terminal.cpp
  qnx/ThreadTraits.cpp
  qnx/WaitLimit.cpp)
set(platform_qnx_libraries socket)
