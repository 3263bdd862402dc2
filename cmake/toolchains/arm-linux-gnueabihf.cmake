# 32-bit ARM, version 7 with a floating point unit.
set(triple arm-linux-gnueabihf)
set(machine arm)
set(CPACK_DEBIAN_PACKAGE_ARCHITECTURE armhf)
# No notes on objects made by compilers before release 7.1; there are none.
set(CMAKE_CXX_FLAGS_INIT -Wno-psabi)
include(${CMAKE_CURRENT_LIST_DIR}/debian-cross.cmake)
