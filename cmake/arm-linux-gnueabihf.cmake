# Cross build for 32-bit ARM Linux, hard-float (armhf), with GNU cross tools
# named arm-linux-gnueabihf-* on PATH, as Debian's g++-arm-linux-gnueabihf
# installs them.
#
# Another toolchain of the same kind: -DONVIFCTRL_CROSS_PREFIX=/opt/tc/bin/arm-linux-gnueabihf-
# (the compiler is <prefix>g++), or the compiler itself with
# -DCMAKE_CXX_COMPILER=...; a target root the toolchain does not know by
# itself with -DCMAKE_SYSROOT=... .
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR arm)

set(ONVIFCTRL_CROSS_PREFIX "arm-linux-gnueabihf-" CACHE STRING
    "Prefix of the cross tools: <prefix>g++, <prefix>gcc")
if(NOT CMAKE_CXX_COMPILER)
  set(CMAKE_CXX_COMPILER "${ONVIFCTRL_CROSS_PREFIX}g++")
endif()
if(NOT CMAKE_C_COMPILER)
  set(CMAKE_C_COMPILER "${ONVIFCTRL_CROSS_PREFIX}gcc")
endif()

# Libraries, headers and packages (GoogleTest among them) are looked up for
# the target only, never taken from the build machine; programs are the
# build machine's.
if(CMAKE_SYSROOT)
  set(CMAKE_FIND_ROOT_PATH "${CMAKE_SYSROOT}")
else()
  set(CMAKE_FIND_ROOT_PATH "/usr/arm-linux-gnueabihf")
endif()
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
