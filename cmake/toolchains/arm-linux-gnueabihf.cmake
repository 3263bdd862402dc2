# 32-bit ARM, version 7 with a floating point unit.
set(triple arm-linux-gnueabihf)
set(machine arm)
set(CPACK_DEBIAN_PACKAGE_ARCHITECTURE armhf)
include(${CMAKE_CURRENT_LIST_DIR}/debian-cross.cmake)
